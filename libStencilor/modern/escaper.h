#ifndef LIBSTENCILOR_MODERN_ESCAPER_H
#define LIBSTENCILOR_MODERN_ESCAPER_H

#include <libStencilor/Template.h>

#include <string>
#include <string_view>

namespace kel::Stencilor::internal {

/// Escapes the values of one render.
/// Ownership: borrows the escape of the options. The result of `escape` is valid until the next
///   call.
class escaper {
  public:
    explicit escaper(const Escape& escape) : escape_(escape) {}

    bool isNone() const noexcept { return escape_.kind_ == Escape::Kind::None; }
    bool isHtml() const noexcept { return escape_.kind_ == Escape::Kind::Html; }

    /// Writes `value` escaped for HTML, into room for `mostHtml` bytes. Returns the end, or null if
    /// the value is not all ASCII or contains a NUL.
    static char* writePlainHtml(std::string_view value, char* out) noexcept;
    static constexpr std::size_t mostHtml(std::size_t size) noexcept { return 6 * size + 8; }

    /// Escapes `value`. The result of a host's function ends at its first NUL. If there is nothing
    /// to escape, this is the value itself.
    std::string_view escape(std::string_view value);

  private:
    const Escape& escape_;
    std::string escaped_;
};

} // namespace kel::Stencilor::internal

#endif
