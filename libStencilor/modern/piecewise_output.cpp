#include <libStencilor/modern/piecewise_output.h>

#include <algorithm>

namespace kel::Stencilor::internal {

namespace {

constexpr std::size_t largestPiece = 65536;

/// Writes valid UTF-8 in pieces that are valid and not too large.
void writePieces(std::string_view text, const piecewise_output::writer& write) {
    while (!text.empty()) {
        std::size_t size = std::min(largestPiece, text.size());
        while (size < text.size() && (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80) {
            --size;
        }
        write(text.substr(0, size));
        text.remove_prefix(size);
    }
}

/// Does not split a character, unless the text is malformed.
std::size_t nextSlice(std::string_view text) {
    constexpr std::size_t sliceSize = 16384;
    std::size_t size = std::min(sliceSize, text.size());
    while (size < text.size() && size > sliceSize - 4 &&
           (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80) {
        --size;
    }
    return size;
}

} // namespace

template <typename Append>
bool piecewise_output::appendWithCare(std::string_view text, Append append) {
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

bool piecewise_output::textWithCare(std::string_view text) {
    return appendWithCare(text, [this](std::string_view slice) { text_.text(slice); });
}

bool piecewise_output::valueWithCare(std::string_view bytes) {
    return appendWithCare(upToNul(bytes), [this](std::string_view slice) { text_.bytes(slice); });
}

void piecewise_output::handOver() {
    text_.drain([this](std::string_view text) { writePieces(text, *write_); });
}

} // namespace kel::Stencilor::internal
