#include <libStencilorJson/JsonValue.h>
#include <libStencilorJson/json_text.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <unordered_set>
#include <utility>

namespace kel::Stencilor {

namespace {

/// Stands where the parser keeps a number as a floating-point one, and would refuse those that are
/// too great for it. Here they are kept as they were written.
class UnusedNumber {
  public:
    UnusedNumber() = default;
    constexpr UnusedNumber(double value) : value_(value) {}

    operator double&() { return value_; } // where the parser stores what it has read
    operator double() const { return 0; } // what it then asks for being finite

  private:
    double value_;
};

using Json = nlohmann::basic_json<std::map, std::vector, std::string, bool, std::int64_t,
                                  std::uint64_t, UnusedNumber>;

/// Builds the tree from what the parser reports. Each function returns false to stop the parser.
class DocumentBuilder {
  public:
    DocumentBuilder(std::string_view text, JsonRoot root)
        : text_(text), rootKind_(root), cursor_(text) {}

    bool null() { return addScalar(JsonValue()); }
    bool boolean(bool truth) {
        return addScalar({.kind = JsonValue::Kind::Boolean, .truth = truth});
    }
    bool number_integer(std::int64_t) { return addNumber(); }
    bool number_unsigned(std::uint64_t) { return addNumber(); }
    bool number_float(UnusedNumber, const std::string&) { return addNumber(); }
    bool string(std::string& text) {
        return addScalar({.kind = JsonValue::Kind::String, .text = std::move(text)});
    }
    bool binary(Json::binary_t&) { return false; } // occurs in no text
    bool start_object(std::size_t) { return open(JsonValue::Kind::Object); }
    bool start_array(std::size_t) { return open(JsonValue::Kind::Array); }
    bool end_object() { return close(); }
    bool end_array() { return close(); }
    bool key(std::string& name);
    bool parse_error(std::size_t bytesRead, const std::string&, const Json::exception& problem);

    /// The tree; throws where the parser was stopped.
    JsonValue result() &&;

  private:
    /// An array or object whose end has not been read. Its address is stable, since the list that
    /// holds it does not grow before that end.
    struct Open {
        JsonValue* value;
        std::unordered_set<std::string> names;
    };

    enum class Last { Nothing, Opening, Name, Value };

    bool addNumber();
    bool addScalar(JsonValue value);
    bool open(JsonValue::Kind kind);
    bool close();
    bool checkPlace(JsonValue::Kind kind);
    JsonValue& place(JsonValue value);
    bool isIn(JsonValue::Kind kind) const;
    bool refuse(std::size_t offset, const std::string& reason);
    std::string expectation(bool separated) const;

    std::string_view text_;
    JsonRoot rootKind_;
    internal::TokenCursor cursor_; // at the last token that was reported
    Last last_ = Last::Nothing;
    JsonValue root_;
    std::vector<Open> open_;
    std::optional<JsonError> error_;
};

bool DocumentBuilder::isIn(JsonValue::Kind kind) const {
    return !open_.empty() && open_.back().value->kind == kind;
}

bool DocumentBuilder::refuse(std::size_t offset, const std::string& reason) {
    error_ = internal::errorAt(text_, offset, reason);
    return false;
}

/// Moves on to the value that was just reported, and refuses one that must not stand there.
bool DocumentBuilder::checkPlace(JsonValue::Kind kind) {
    cursor_.next();
    if (open_.empty() && rootKind_ == JsonRoot::Object && kind != JsonValue::Kind::Object) {
        return refuse(cursor_.start(), "expected an object");
    }
    if (isIn(JsonValue::Kind::Object) && open_.back().value->names.back() == jsonBooleanMember &&
        kind != JsonValue::Kind::Boolean) {
        return refuse(cursor_.start(), "expected true or false as the value of \"$boolean\"");
    }
    last_ = Last::Value;
    return true;
}

JsonValue& DocumentBuilder::place(JsonValue value) {
    if (open_.empty()) {
        return root_ = std::move(value);
    }
    return open_.back().value->items.emplace_back(std::move(value));
}

bool DocumentBuilder::addScalar(JsonValue value) {
    if (!checkPlace(value.kind)) {
        return false;
    }
    place(std::move(value));
    return true;
}

bool DocumentBuilder::addNumber() {
    if (!checkPlace(JsonValue::Kind::Number)) {
        return false;
    }
    place({.kind = JsonValue::Kind::Number, .text = std::string(cursor_.token())});
    return true;
}

bool DocumentBuilder::open(JsonValue::Kind kind) {
    if (!checkPlace(kind)) {
        return false;
    }
    if (open_.size() == deepestJson) {
        return refuse(cursor_.start(),
                      "nested more than " + std::to_string(deepestJson) + " levels deep");
    }
    open_.push_back({&place({.kind = kind}), {}});
    last_ = Last::Opening;
    return true;
}

bool DocumentBuilder::close() {
    cursor_.next();
    open_.pop_back();
    last_ = Last::Value;
    return true;
}

bool DocumentBuilder::key(std::string& name) {
    cursor_.next();
    if (!open_.back().names.insert(name).second) {
        return refuse(cursor_.start(), "duplicate name " + std::string(cursor_.token()));
    }
    open_.back().value->names.push_back(std::move(name));
    last_ = Last::Name;
    return true;
}

/// What may follow the last token, where `separated` tells that its comma or colon was there.
std::string DocumentBuilder::expectation(bool separated) const {
    const bool inObject = isIn(JsonValue::Kind::Object);
    switch (last_) {
    case Last::Nothing:
        return rootKind_ == JsonRoot::Object ? "an object" : "a value";
    case Last::Opening:
        return inObject ? "a name in quotation marks or '}'" : "a value or ']'";
    case Last::Name:
        return separated ? "a value" : "':'";
    case Last::Value:
        break;
    }
    if (open_.empty()) {
        return "the end of the text";
    }
    if (separated) {
        return inObject ? "a name in quotation marks" : "a value";
    }
    return inObject ? "',' or '}'" : "',' or ']'";
}

/// The parser's own words for what is wrong inside of a string or number. Nothing where a token is
/// wrong as a whole: about those more is known here, since the parser names one of the tokens that
/// could follow.
std::optional<std::string> tokenProblem(std::string_view problem) {
    constexpr std::string_view before = " - ";
    const std::size_t start = std::min(problem.find(before), problem.size());
    problem.remove_prefix(std::min(start + before.size(), problem.size()));
    if (!problem.starts_with("invalid string") && !problem.starts_with("invalid number")) {
        return std::nullopt;
    }
    return std::string(problem.substr(0, problem.find("; last read")));
}

bool DocumentBuilder::parse_error(std::size_t bytesRead, const std::string&,
                                  const Json::exception& problem) {
    if (const std::optional<std::string> inToken = tokenProblem(problem.what())) {
        // The end counts as a byte that was read.
        std::size_t offset = std::min(bytesRead - 1, text_.size());
        if (inToken->find("surrogate") != std::string::npos) {
            offset = text_.rfind("\\u", offset);
        }
        return refuse(offset, *inToken);
    }
    std::size_t offset = internal::skipJsonBlanks(text_, cursor_.end());
    const char separator = last_ == Last::Name ? ':' : ',';
    const bool separable = last_ == Last::Name || (last_ == Last::Value && !open_.empty());
    const bool separated = separable && offset < text_.size() && text_[offset] == separator;
    if (separated) {
        offset = internal::skipJsonBlanks(text_, offset + 1);
    }
    const char* const found = offset == text_.size() ? ", found the end of the text" : "";
    return refuse(offset, "expected " + expectation(separated) + found);
}

JsonValue DocumentBuilder::result() && {
    if (error_) {
        throw *error_;
    }
    return std::move(root_);
}

} // namespace

JsonValue parseJson(std::string_view text, JsonRoot root) {
    if (const std::optional<JsonError> error = internal::findEncodingError(text)) {
        throw *error;
    }
    DocumentBuilder builder(text, root);
    Json::sax_parse(text.begin(), text.end(), &builder);
    return std::move(builder).result();
}

} // namespace kel::Stencilor
