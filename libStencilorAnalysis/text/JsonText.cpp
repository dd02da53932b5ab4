#include <libStencilorAnalysis/text/CodePoint.h>
#include <libStencilorAnalysis/text/JsonText.h>
#include <libStencilorAnalysis/text/ShownText.h>

#include <nlohmann/json.hpp>

#include <utility>

namespace kel::Stencilor::Analysis {

using Json = nlohmann::ordered_json;

namespace {

constexpr int indentation = 2;

std::string dump(const Json& document, int indent) {
    return showJson(document.dump(indent, ' ', false, Json::error_handler_t::replace));
}

/// Appends text, and indents all lines but the first.
void appendIndented(std::string& text, std::string_view lines, const std::string& margin) {
    for (std::size_t end = lines.find('\n'); end != lines.npos; end = lines.find('\n')) {
        text.append(lines.substr(0, end + 1)).append(margin);
        lines.remove_prefix(end + 1);
    }
    text += lines;
}

/// Appends a character of a string as JSON writes it.
void appendCharacter(std::string& written, std::string_view bytes, char32_t point) {
    constexpr std::string_view shortForms = "\"\"\\\\\bb\ff\nn\rr\tt";
    if (point == replacement) {
        written += "\uFFFD";
        return;
    }
    for (std::size_t at = 0; at < shortForms.size(); at += 2) {
        if (bytes[0] == shortForms[at]) {
            written.append(1, '\\').append(1, shortForms[at + 1]);
            return;
        }
    }
    if (point < 0x20) {
        constexpr std::string_view digits = "0123456789abcdef";
        written.append("\\u00").append(1, digits[point >> 4]).append(1, digits[point & 15]);
        return;
    }
    written += bytes;
}

} // namespace

std::string jsonDocument(const Json& document) {
    return dump(document, indentation) + "\n";
}

std::string jsonDocument(const Json& document, std::string_view member, std::size_t count,
                         const std::function<Json(std::size_t)>& elementAt) {
    std::string text = jsonDocument(document);
    if (count == 0) {
        return text;
    }
    const std::string name = "\"" + std::string(member) + "\": ";
    const std::size_t at = text.rfind(name + "[]");
    const std::string margin(at - text.rfind('\n', at) - 1, ' ');
    const std::string rest = text.substr(at + name.size() + 2);
    const std::string innerMargin = margin + std::string(indentation, ' ');
    text.resize(at + name.size());
    text += '[';
    for (std::size_t i = 0; i < count; ++i) {
        text += (i == 0 ? "\n" : ",\n") + innerMargin;
        appendIndented(text, dump(elementAt(i), indentation), innerMargin);
    }
    return text + "\n" + margin + "]" + rest;
}

std::string jsonString(std::string_view text) {
    std::string written = "\"";
    while (!text.empty()) {
        const CodePoint point = firstCodePoint(text);
        appendCharacter(written, text.substr(0, point.size), point.value);
        text.remove_prefix(point.size);
    }
    return showJson(written) + "\"";
}

void JsonWriter::name(std::string_view name) {
    startValue();
    text_ += jsonString(name) + ": ";
    isNamed_ = true;
}

void JsonWriter::string(std::string_view text) {
    startValue();
    text_ += jsonString(text);
}

void JsonWriter::number(std::size_t number) {
    startValue();
    text_ += std::to_string(number);
}

void JsonWriter::member(std::string_view memberName, std::string_view text) {
    name(memberName);
    string(text);
}

void JsonWriter::member(std::string_view memberName, std::size_t value) {
    name(memberName);
    number(value);
}

std::string JsonWriter::take() {
    return std::move(text_) + "\n";
}

void JsonWriter::begin(char opening) {
    startValue();
    text_ += opening;
    ++depth_;
    isFirst_ = true;
}

void JsonWriter::end(char closing) {
    --depth_;
    if (!isFirst_) {
        breakLine();
    }
    text_ += closing;
    isFirst_ = false;
}

void JsonWriter::startValue() {
    if (!isNamed_ && depth_ > 0) {
        text_ += isFirst_ ? "" : ",";
        breakLine();
    }
    isNamed_ = false;
    isFirst_ = false;
}

void JsonWriter::breakLine() {
    text_ += '\n';
    text_.append(depth_ * indentation, ' ');
}

} // namespace kel::Stencilor::Analysis
