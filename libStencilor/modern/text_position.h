#ifndef LIBSTENCILOR_MODERN_TEXT_POSITION_H
#define LIBSTENCILOR_MODERN_TEXT_POSITION_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kel::Stencilor::internal {

/// A position in text that only moves forward, with its line and column. Lines end at LF, columns
/// count code points, and both start at 1.
class text_position {
  public:
    explicit text_position(std::string_view text) : text_(text) {}

    /// Moves to a byte, which must not be before the current one.
    void moveTo(std::size_t offset) noexcept {
        for (; offset_ < offset; ++offset_) {
            const auto byte = static_cast<unsigned char>(text_[offset_]);
            if (byte == '\n') {
                ++line_;
                column_ = 1;
            } else if ((byte & 0xC0) != 0x80) { // not a continuation byte
                ++column_;
            }
        }
    }

    std::uint32_t line() const noexcept { return line_; }
    std::uint32_t column() const noexcept { return column_; }

  private:
    std::string_view text_;
    std::size_t offset_ = 0;
    std::uint32_t line_ = 1;
    std::uint32_t column_ = 1;
};

} // namespace kel::Stencilor::internal

#endif
