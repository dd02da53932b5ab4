#ifndef LIBSTENCILORJSON_JSON_H
#define LIBSTENCILORJSON_JSON_H

/// @file
/// Makes contexts of the values of nlohmann-json.
///
///     #include <libStencilorJson/Json.h>
///     #include <iostream>
///
///     using namespace kel::Stencilor;
///
///     int main() {
///         const nlohmann::json values = {{"user", {{"name", "world"}}}};
///         std::cout << buildOutput("Hello, {{ user.name }}!\n", *contextFromJson(values));
///     }
///
/// Values become what `libStencilorJson/JsonValue.h` tells of JSON texts. The context is the one
/// that the text `value.dump()` makes: numbers are written as `dump` writes them.
///
/// All that knows nlohmann-json is in this header. So the library serves hosts with whatever
/// version of it they have.

#include <libStencilorJson/JsonValue.h>
#include <nlohmann/json.hpp>

namespace kel::Stencilor {

/// @cond
namespace internal {

/// Reads a value of nlohmann-json, and knows on the way where it is.
class JsonReader {
  public:
    JsonValue read(const nlohmann::json& json);

  private:
    JsonValue readNumber(const nlohmann::json& json) const;
    JsonValue readArray(const nlohmann::json& json);
    JsonValue readObject(const nlohmann::json& json);
    JsonValue readInside(const nlohmann::json& json, const std::string& part);
    std::string readText(const std::string& text) const;
    [[noreturn]] void refuse(const std::string& reason) const;

    std::string pointer_;
    std::size_t depth_ = 0;
};

inline void JsonReader::refuse(const std::string& reason) const {
    throw JsonError(pointer_.empty() ? reason : pointer_ + ": " + reason);
}

inline std::string JsonReader::readText(const std::string& text) const {
    if (!isValidUtf8(text)) {
        refuse("malformed UTF-8");
    }
    return text;
}

inline JsonValue JsonReader::readNumber(const nlohmann::json& json) const {
    std::string text = json.dump();
    if (text == "null") {
        refuse("not a finite number");
    }
    return {.kind = JsonValue::Kind::Number, .text = std::move(text)};
}

inline JsonValue JsonReader::readInside(const nlohmann::json& json, const std::string& part) {
    const std::size_t size = pointer_.size();
    pointer_ += "/" + part;
    JsonValue result = read(json);
    pointer_.resize(size);
    return result;
}

inline JsonValue JsonReader::readArray(const nlohmann::json& json) {
    JsonValue result{.kind = JsonValue::Kind::Array};
    result.items.reserve(json.size());
    for (const nlohmann::json& item : json) {
        result.items.push_back(readInside(item, std::to_string(result.items.size())));
    }
    return result;
}

inline JsonValue JsonReader::readObject(const nlohmann::json& json) {
    JsonValue result{.kind = JsonValue::Kind::Object};
    for (const auto& [name, member] : json.items()) {
        result.names.push_back(readText(name));
        result.items.push_back(readInside(member, pointerPart(name)));
        if (name == jsonBooleanMember && !member.is_boolean()) {
            refuse("expected true or false as the value of \"$boolean\"");
        }
    }
    return result;
}

inline JsonValue JsonReader::read(const nlohmann::json& json) {
    if (json.is_structured() && depth_ == deepestJson) {
        refuse("nested more than " + std::to_string(deepestJson) + " levels deep");
    }
    ++depth_;
    JsonValue result;
    if (json.is_string()) {
        result = {.kind = JsonValue::Kind::String,
                  .text = readText(json.get_ref<const std::string&>())};
    } else if (json.is_boolean()) {
        result = {.kind = JsonValue::Kind::Boolean, .truth = json.get<bool>()};
    } else if (json.is_number()) {
        result = readNumber(json);
    } else if (json.is_array()) {
        result = readArray(json);
    } else if (json.is_object()) {
        result = readObject(json);
    } else if (!json.is_null()) {
        refuse(json.is_binary() ? "binary data, which JSON does not have" : "a discarded value");
    }
    --depth_;
    return result;
}

} // namespace internal
/// @endcond

/// Makes a context of a value.
///
/// Refused are, beside what is refused in a text, numbers that are not finite, binary data, and
/// values that their parser has discarded. The error has no line, but the pointer of the value
/// (`/users/0/name: malformed UTF-8`).
///
/// @param value the value, which is only read
/// @return the context; null where the value is JSON's null
inline std::unique_ptr<ContextBase> contextFromJson(const nlohmann::json& value) {
    return contextFromJsonValue(internal::JsonReader().read(value));
}

} // namespace kel::Stencilor

#endif
