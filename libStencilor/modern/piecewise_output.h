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

    /// `write` may be null, for a text all at once. `wellFormed` as for `joined_output`; `size` is
    /// that of the template.
    piecewise_output(const writer* write, bool wellFormed, std::size_t size)
        : text_(wellFormed), write_(write),
          enough_(write == nullptr ? std::numeric_limits<std::size_t>::max() : pieceSize) {
        if (write == nullptr) {
            text_.reserve(size); // most outputs are longer than their template
        }
    }

    void text(std::string_view text) {
        if (text.size() < enough_) {
            text_.text(text);
            handOverEnough();
        } else {
            inSlices(text, [this](std::string_view slice) { text_.text(slice); });
        }
    }

    /// Appends bytes that may be malformed, up to their first NUL. Returns how many they are.
    std::size_t value(std::string_view bytes) {
        if (bytes.size() < enough_) {
            const std::size_t appended = text_.valueBytes(bytes);
            handOverEnough();
            return appended;
        }
        const std::string_view value = upToNul(bytes);
        inSlices(value, [this](std::string_view slice) { text_.bytes(slice); });
        return value.size();
    }

    void beginIncluded(bool wellFormed) { text_.beginIncluded(wellFormed); }
    void endNode() { text_.endNode(); }

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
    void inSlices(std::string_view text, Append append) {
        while (!text.empty()) {
            const std::size_t size = nextSlice(text);
            append(text.substr(0, size));
            handOverEnough();
            text.remove_prefix(size);
        }
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

    void handOverEnough() {
        if (text_.size() >= enough_) {
            handOver();
        }
    }

    void handOver();

    joined_output<String> text_;
    const writer* write_;
    const std::size_t enough_; // bytes to hand over
};

} // namespace kel::Stencilor::internal

#endif
