#ifndef LIBSTENCILOR_MODERN_PIECEWISE_OUTPUT_H
#define LIBSTENCILOR_MODERN_PIECEWISE_OUTPUT_H

#include <libStencilor/render/output.h>

#include <cstddef>
#include <functional>
#include <limits>
#include <string_view>
#include <utility>

namespace kel::Stencilor::internal {

/// The text of one render: collected as a whole, or passed on in pieces as soon as there is enough.
/// Ownership: borrows the function that receives the pieces.
class piecewise_output {
  public:
    using writer = std::function<void(std::string_view)>;

    /// If `write` is null, the text is collected. `allowed` is the maximum number of bytes.
    /// `wellFormed` as for `joined_output`; `size` is that of the template.
    piecewise_output(const writer* write, std::uint64_t allowed, bool wellFormed, std::size_t size)
        : text_(wellFormed), write_(write), allowed_(allowed) {
        if (write == nullptr) {
            text_.reserve(size); // most outputs are longer than their template
        }
        renewBounds();
    }

    /// Appends text of the template. Returns false, with nothing appended, if that would exceed
    /// the limit.
    bool text(std::string_view text) { return text_.textIfRoom(text) || textWithCare(text); }

    /// Appends bytes that may be malformed, up to their first NUL. Returns false, with nothing
    /// appended, if that would exceed the limit.
    bool value(std::string_view bytes) { return text_.plainIfRoom(bytes) || valueWithCare(bytes); }

    /// Appends what `write` writes, which is well formed, like `text_sink::writeIfRoom`.
    template <typename Write>
    bool writeIfRoom(std::size_t most, Write write) {
        return text_.writeIfRoom(most, write);
    }

    void beginIncluded(bool wellFormed) { text_.beginIncluded(wellFormed); }
    void endNode() {
        if (text_.endNode()) {
            renewBounds();
        }
    }

    /// The number of bytes appended, before decoding.
    std::uint64_t appended() const noexcept { return text_.appended(); }

    /// The text, or its last pieces.
    String finish() {
        if (write_ == nullptr) {
            return text_.take();
        }
        handOver();
        return String();
    }

  private:
    // With room for one more slice of half this size, the text stays below the size that the sink
    // keeps between pieces.
    static constexpr std::size_t pieceSize = 32768;

    bool textWithCare(std::string_view text);
    bool valueWithCare(std::string_view bytes);
    template <typename Append>
    bool appendWithCare(std::string_view text, Append append);

    /// Call this after bytes were passed on or decoded.
    void renewBounds() {
        text_.setBounds(allowed_,
                        write_ == nullptr ? std::numeric_limits<std::size_t>::max() : pieceSize);
    }

    void handOver();

    joined_output<String> text_;
    const writer* write_;
    const std::uint64_t allowed_;
};

} // namespace kel::Stencilor::internal

#endif
