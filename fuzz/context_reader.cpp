#include "context_reader.h"

#include <algorithm>
#include <array>

namespace fuzz {

namespace {

using kel::Stencilor::ContextBase;
using kel::Stencilor::ContextBoolean;
using kel::Stencilor::ContextDictionary;
using kel::Stencilor::ContextIterable;
using kel::Stencilor::ContextString;

// The letters a to o represent 1 to 15.
constexpr std::array<const char*, 16> names = {"if",  "a",   "b",   "c",     "a.a",   "a.b",
                                               "b.a", "b.b", "a.c", "a.a.b", "a.b.a", "a/b",
                                               "l",   "a.l", "b.l", "a."};

constexpr std::string_view kinds = "'+-{*[0";

// Values are read and destroyed recursively.
constexpr int deepest = 64;

} // namespace

char ContextReader::take() {
    if (rest_.empty()) {
        return '\0';
    }
    const char byte = rest_.front();
    rest_.remove_prefix(1);
    return byte;
}

void ContextReader::readChildren(ContextBase& parent) {
    char kind = take();
    while (kinds.find(kind) != std::string_view::npos) {
        const kel::String name = names[static_cast<unsigned char>(take()) % names.size()];
        std::unique_ptr<ContextBase> value = readValue(kind);
        delete parent.find(name); // which insert() would drop
        parent.insert(name, value.release());
        kind = take();
    }
}

std::unique_ptr<ContextBase> ContextReader::readValue(char kind) {
    switch (kind) {
    case '\'':
        return std::make_unique<ContextString>(readText());
    case '+':
    case '-':
        return readParent(std::make_unique<ContextBoolean>(kind == '+'));
    case '{':
        return readParent(std::make_unique<ContextDictionary>());
    case '*':
        return readParent(std::make_unique<ContextBase>());
    case '[':
        return readList();
    default:
        return nullptr;
    }
}

template <typename Value>
std::unique_ptr<Value> ContextReader::readParent(std::unique_ptr<Value> parent) {
    if (depth_ < deepest) {
        ++depth_;
        readChildren(*parent);
        --depth_;
    }
    return parent;
}

std::unique_ptr<ContextIterable> ContextReader::readList() {
    auto list = std::make_unique<ContextIterable>();
    if (depth_ == deepest) {
        return list;
    }
    ++depth_;
    char kind = take();
    while (kinds.find(kind) != std::string_view::npos) {
        std::unique_ptr<ContextBase> element = readValue(kind);
        list->add(element.release());
        kind = take();
    }
    --depth_;
    longestList_ = std::max(longestList_, list->size());
    return list;
}

kel::String ContextReader::readText() {
    const std::size_t end = std::min(rest_.find('\''), rest_.size());
    const kel::String text(rest_.substr(0, end));
    rest_.remove_prefix(std::min(end + 1, rest_.size()));
    return text;
}

} // namespace fuzz
