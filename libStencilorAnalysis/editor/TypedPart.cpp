#include <libStencilorAnalysis/editor/TypedPart.h>

#include <algorithm>

namespace kel::Stencilor::Analysis {

namespace {

bool isLetter(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || byte == '_';
}

bool isNameByte(char byte) {
    return isLetter(byte) || (byte >= '0' && byte <= '9') || byte == '.' || byte == '/';
}

/// Reads a tag from its opening delimiter up to the offset.
class TagReader {
  public:
    TagReader(std::string_view text, std::size_t at, std::size_t offset)
        : text_(text), at_(at), offset_(offset) {}

    TypedPart read(bool isSubstitution) {
        if (isSubstitution) {
            return name(TypedPart::Kind::String);
        }
        skipSpaces();
        const std::size_t begin = at_;
        while (at_ < text_.size() && text_[at_] >= 'a' && text_[at_] <= 'z') {
            ++at_;
        }
        if (offset_ <= at_) {
            return found(TypedPart::Kind::Keyword, begin);
        }
        const std::string_view keyword = text_.substr(begin, at_ - begin);
        return keyword == "if"        ? name(TypedPart::Kind::Condition)
               : keyword == "for"     ? loop()
               : keyword == "include" ? path()
                                      : TypedPart();
    }

  private:
    void skipSpaces() {
        while (at_ < text_.size() && at_ < offset_ && (text_[at_] == ' ' || text_[at_] == '\t')) {
            ++at_;
        }
    }

    /// Returns a name if it contains the offset; otherwise moves `at_` after it.
    TypedPart name(TypedPart::Kind kind) {
        skipSpaces();
        const std::size_t begin = at_;
        while (at_ < text_.size() && isNameByte(text_[at_])) {
            ++at_;
        }
        return offset_ <= at_ ? found(kind, begin) : TypedPart();
    }

    TypedPart loop() {
        if (const TypedPart variable = name(TypedPart::Kind::Variable);
            variable.kind != TypedPart::Kind::None) {
            return variable;
        }
        skipSpaces();
        const std::size_t begin = at_;
        const std::string_view rest = text_.substr(at_);
        at_ += rest.starts_with("in") ? 2u : rest.starts_with('i') ? 1u : 0u;
        if (offset_ <= at_) {
            return found(TypedPart::Kind::In, begin);
        }
        return at_ == begin + 2 ? name(TypedPart::Kind::List) : TypedPart();
    }

    TypedPart path() {
        skipSpaces();
        if (at_ == text_.size() || text_[at_] != '"' || at_ >= offset_) {
            return {};
        }
        ++at_;
        return name(TypedPart::Kind::Path);
    }

    TypedPart found(TypedPart::Kind kind, std::size_t begin) const {
        TypedPart part{.kind = kind,
                       .word = {static_cast<unsigned int>(begin), static_cast<unsigned int>(at_)}};
        std::string_view rest = text_.substr(at_);
        rest = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(rest.find_first_not_of(" \t"), rest.size()));
        part.isQuoted = rest.starts_with('"');
        rest.remove_prefix(part.isQuoted ? 1 : 0);
        rest.remove_prefix(std::min(rest.find_first_not_of(" \t"), rest.size()));
        part.isClosed = rest.starts_with(kind == TypedPart::Kind::String ? "}}" : "%}");
        return part;
    }

    std::string_view text_;
    std::size_t at_;
    std::size_t offset_;
};

} // namespace

TypedPart findTypedPart(std::string_view text, std::size_t offset) {
    const std::string_view before = text.substr(0, offset);
    const std::size_t line = before.rfind('\n') + 1; // 0 on the first one
    const std::string_view typed = before.substr(line);
    const std::size_t name = typed.rfind("{{");
    const std::size_t tag = typed.rfind("{%");
    if (name == typed.npos && tag == typed.npos) {
        return {};
    }
    const bool isSubstitution = tag == typed.npos || (name != typed.npos && name > tag);
    const std::size_t opener = isSubstitution ? name : tag;
    if (typed.find(isSubstitution ? "}}" : "%}", opener + 2) != typed.npos) {
        return {};
    }
    return TagReader(text, line + opener + 2, offset).read(isSubstitution);
}

} // namespace kel::Stencilor::Analysis
