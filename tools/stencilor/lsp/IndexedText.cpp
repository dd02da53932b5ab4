#include <tools/stencilor/lsp/IndexedText.h>
#include <tools/stencilor/lsp/ResponseError.h>

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <limits>
#include <utility>

namespace stencilor::lsp {

namespace {

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

} // namespace

IndexedText::IndexedText(Encoding encoding, std::string text)
    : encoding_(encoding), text_(std::move(text)) {}

/// A character counts where it begins.
std::size_t IndexedText::unitsOf(char byte) const {
    if (encoding_ == Encoding::Utf8) {
        return 1;
    }
    return isContinuation(byte) ? 0 : static_cast<unsigned char>(byte) >= 0xF0 ? 2 : 1;
}

void IndexedText::indexBlock() const {
    const std::size_t end = std::min(indexed_ + blockSize, text_.size());
    std::size_t units = units_.back();
    for (; indexed_ < end; ++indexed_) {
        const char byte = text_[indexed_];
        units += unitsOf(byte);
        const bool isLoneReturn =
            byte == '\r' && (indexed_ + 1 == text_.size() || text_[indexed_ + 1] != '\n');
        if (byte == '\n' || isLoneReturn) {
            lines_.push_back(indexed_ + 1);
        }
    }
    if (indexed_ % blockSize == 0) {
        units_.push_back(units);
    }
}

void IndexedText::indexTo(std::size_t offset) const {
    while (indexed_ < std::min(offset, text_.size())) {
        indexBlock();
    }
}

std::size_t IndexedText::unitsBetween(std::size_t begin, std::size_t end) const {
    if (end - begin > blockSize) {
        return unitsBefore(end) - unitsBefore(begin);
    }
    std::size_t units = 0;
    for (std::size_t i = begin; i < end; ++i) {
        units += unitsOf(text_[i]);
    }
    return units;
}

std::size_t IndexedText::unitsBefore(std::size_t offset) const {
    const std::size_t block = offset / blockSize;
    assert(block < units_.size());
    return units_[block] + unitsBetween(block * blockSize, offset);
}

TextPosition IndexedText::positionOf(std::size_t offset) const {
    const std::size_t end = std::min(offset, text_.size());
    indexTo(end);
    const auto after = std::upper_bound(lines_.begin(), lines_.end(), end);
    return {static_cast<std::size_t>(after - lines_.begin()) - 1, unitsBetween(after[-1], end)};
}

/// Without the line break.
std::size_t IndexedText::endOfLine(std::size_t line) const {
    if (line + 1 == lines_.size()) {
        return text_.size();
    }
    const std::size_t end = lines_[line + 1] - 1;
    return end > lines_[line] && text_[end] == '\n' && text_[end - 1] == '\r' ? end - 1 : end;
}

std::size_t IndexedText::offsetOf(TextPosition position) const {
    while (lines_.size() <= position.line + 1 && indexed_ < text_.size()) {
        indexBlock();
    }
    if (position.line >= lines_.size()) {
        return text_.size();
    }
    const std::size_t begin = lines_[position.line];
    const std::size_t end = endOfLine(position.line);
    const std::size_t before = unitsBefore(begin);
    const std::size_t wanted =
        before + std::min(position.character, std::numeric_limits<std::size_t>::max() - before);
    const auto block = std::upper_bound(units_.begin(), units_.end(), wanted) - units_.begin() - 1;
    std::size_t offset = std::max(begin, static_cast<std::size_t>(block) * blockSize);
    std::size_t units = unitsBefore(std::min(offset, end));
    while (offset < end && (units + unitsOf(text_[offset]) <= wanted)) {
        units += unitsOf(text_[offset++]);
    }
    offset = std::min(offset, end);
    while (offset > begin && offset < text_.size() && isContinuation(text_[offset])) {
        --offset;
    }
    return offset;
}

void IndexedText::replace(std::size_t begin, std::size_t end, std::string_view text) {
    text_.replace(begin, end - begin, text);
    // A line break before the change may combine with what now follows it.
    const std::size_t unchanged = std::min(std::max<std::size_t>(begin, 1) - 1, indexed_);
    const std::size_t block = unchanged / blockSize;
    indexed_ = block * blockSize;
    units_.resize(block + 1);
    lines_.erase(std::upper_bound(lines_.begin(), lines_.end(), indexed_), lines_.end());
}

Json toJson(TextPosition position) {
    Json json = Json::object(); // a list of pairs would take several times as long
    json["line"] = position.line;
    json["character"] = position.character;
    return json;
}

void append(std::string& json, TextPosition position) {
    json += "{\"line\":" + std::to_string(position.line) +
            ",\"character\":" + std::to_string(position.character) + "}";
}

TextPosition positionFrom(const Json& json) {
    const auto number = [&json](const char* name) -> std::size_t {
        const Json& value = json.at(name);
        if (!value.is_number_integer()) {
            throw ResponseError(ErrorCode::InvalidParams, std::string(name) + " is not a number");
        }
        const bool isNegative = !value.is_number_unsigned() && value.get<std::int64_t>() < 0;
        return isNegative ? 0 : static_cast<std::size_t>(value.get<std::uint64_t>());
    };
    return {number("line"), number("character")};
}

} // namespace stencilor::lsp
