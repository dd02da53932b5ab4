#ifndef LIBSTENCILOR_MODERN_ESCAPER_H
#define LIBSTENCILOR_MODERN_ESCAPER_H

#include <libStencilor/Template.h>

#include <string>
#include <string_view>

namespace kel::Stencilor::internal {

/// Escapes the values of one render.
/// Ownership: borrows the options' escape. What `escape` returns is valid until the next call.
class escaper {
  public:
    explicit escaper(const Escape& escape) : escape_(escape) {}

    bool isNone() const noexcept { return escape_.kind_ == Escape::Kind::None; }
    bool isHtml() const noexcept { return escape_.kind_ == Escape::Kind::Html; }

    /// Writes `value` escaped for HTML, into room for `mostHtml` bytes. Returns the end, or null
    /// where the value is not all ASCII or holds a NUL.
    static char* writePlainHtml(std::string_view value, char* out) noexcept;
    static constexpr std::size_t mostHtml(std::size_t size) noexcept { return 6 * size + 8; }

    /// `value` escaped, up to the first NUL of what a host's function made of it. The value itself
    /// where there is nothing to escape.
    std::string_view escape(std::string_view value);

  private:
    const Escape& escape_;
    std::string escaped_;
};

} // namespace kel::Stencilor::internal

#endif
