#ifndef LIBSTENCILOR_MODERN_PIECEWISE_OUTPUT_H
#define LIBSTENCILOR_MODERN_PIECEWISE_OUTPUT_H

#include <libStencilor/render/output.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <limits>
#include <string_view>
#include <utility>

namespace kel::Stencilor::internal {

/// The text of one render: all at once, or handed over piece by piece as soon as there is enough.
/// Ownership: borrows the function that takes the pieces.
class piecewise_output {
  public:
    using writer = std::function<void(std::string_view)>;

    /// `write` may be null, for a text all at once. `allowed` is how many bytes it may have.
    /// `wellFormed` as for `joined_output`; `size` is that of the template.
    piecewise_output(const writer* write, std::uint64_t allowed, bool wellFormed, std::size_t size)
        : text_(wellFormed), write_(write), allowed_(allowed) {
        if (write == nullptr) {
            text_.reserve(size); // most outputs are longer than their template
        }
        renewBounds();
    }

    /// Appends a text of the template. False, with nothing appended, where that is not allowed.
    bool text(std::string_view text) {
        return text_.textIfRoom(text) ||
               appendWithCare(text, [this](std::string_view slice) { text_.text(slice); });
    }

    /// Appends bytes that may be malformed, up to their first NUL. False, with nothing appended,
    /// where that is not allowed.
    bool value(std::string_view bytes) {
        return text_.plainIfRoom(bytes) ||
               appendWithCare(upToNul(bytes),
                              [this](std::string_view slice) { text_.bytes(slice); });
    }

    void beginIncluded(bool wellFormed) { text_.beginIncluded(wellFormed); }
    void endNode() {
        text_.endNode();
        renewBounds();
    }

    /// How many bytes were appended, before any decoding.
    std::uint64_t appended() const noexcept { return text_.appended(); }

    /// The text, or the last pieces of it.
    String finish() {
        if (write_ == nullptr) {
            return text_.take();
        }
        handOver();
        return String();
    }

  private:
    // With the room for one more slice, what is held stays below what the sink keeps between
    // pieces.
    static constexpr std::size_t pieceSize = 32768;
    static constexpr std::size_t sliceSize = 16384;

    template <typename Append>
    bool appendWithCare(std::string_view text, Append append) {
        if (text.size() > allowed_ - appended()) {
            return false;
        }
        while (!text.empty()) {
            const std::size_t size = write_ == nullptr ? text.size() : nextSlice(text);
            append(text.substr(0, size));
            text.remove_prefix(size);
            if (write_ != nullptr && text_.size() >= pieceSize) {
                handOver();
            }
        }
        renewBounds();
        return true;
    }

    /// A slice divides no character, unless the text is malformed there.
    static std::size_t nextSlice(std::string_view text) {
        std::size_t size = std::min(sliceSize, text.size());
        while (size < text.size() && size > sliceSize - 4 &&
               (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80) {
            --size;
        }
        return size;
    }

    /// To be called where bytes were handed over or decoded.
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
