#include <libStencilor/modern/piecewise_output.h>

namespace kel::Stencilor::internal {

namespace {

constexpr std::size_t largestPiece = 65536;

/// Writes valid UTF-8 in pieces that are no larger than promised, and valid, too.
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

} // namespace

void piecewise_output::handOver() {
    text_.drain([this](std::string_view text) { writePieces(text, *write_); });
}

} // namespace kel::Stencilor::internal
