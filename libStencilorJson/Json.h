#ifndef LIBSTENCILORJSON_JSON_H
#define LIBSTENCILORJSON_JSON_H

/// @file
/// Converts nlohmann-json values.
///
///     #include <libStencilorJson/Json.h>
///     #include <iostream>
///
///     using namespace kel::Stencilor;
///
///     int main() {
///         const nlohmann::json json = {{"user", {{"name", "world"}}}};
///         std::cout << buildOutput("Hello, {{ user.name }}!\n", Context(valueFromJson(json)));
///     }
///
/// Only this header depends on nlohmann-json, so hosts can use any version of it.

#include <libStencilorJson/JsonText.h>

#include <nlohmann/json.hpp>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

namespace kel::Stencilor {

/// @cond
namespace internal {

/// Converts an nlohmann-json value, and keeps track of the position in it.
class JsonConverter {
  public:
    Value convert(const nlohmann::json& json);

  private:
    Value convertNumber(const nlohmann::json& json) const;
    Value convertArray(const nlohmann::json& json);
    Value convertObject(const nlohmann::json& json);
    Value convertInside(const nlohmann::json& json, const std::string& part);
    const std::string& checked(const std::string& text) const;
    [[noreturn]] void refuse(const std::string& reason) const;

    std::string pointer_;
    unsigned int depth_ = 0;
};

inline void JsonConverter::refuse(const std::string& reason) const {
    throw JsonError(pointer_.empty() ? reason : pointer_ + ": " + reason);
}

inline const std::string& JsonConverter::checked(const std::string& text) const {
    if (!isValidUtf8(text)) {
        refuse("malformed UTF-8");
    }
    return text;
}

inline Value JsonConverter::convertNumber(const nlohmann::json& json) const {
    if (json.is_number_unsigned()) {
        return json.get<std::uint64_t>();
    }
    if (json.is_number_integer()) {
        return json.get<std::int64_t>();
    }
    const auto number = json.get<double>();
    if (!std::isfinite(number)) {
        refuse("not a finite number");
    }
    return number;
}

inline Value JsonConverter::convertInside(const nlohmann::json& json, const std::string& part) {
    const std::size_t size = pointer_.size();
    pointer_ += "/" + part;
    Value result = convert(json);
    pointer_.resize(size);
    return result;
}

inline Value JsonConverter::convertArray(const nlohmann::json& json) {
    Value result = Value::list();
    for (const nlohmann::json& item : json) {
        result.add(convertInside(item, std::to_string(result.size())));
    }
    return result;
}

inline Value JsonConverter::convertObject(const nlohmann::json& json) {
    Value result;
    for (const auto& [name, member] : json.items()) {
        result.set(String(checked(name)), convertInside(member, pointerPart(name)));
    }
    return result;
}

inline Value JsonConverter::convert(const nlohmann::json& json) {
    if (json.is_structured() && depth_ == Value::deepest) {
        refuse("nested more than " + std::to_string(Value::deepest) + " levels deep");
    }
    ++depth_;
    Value result = nullptr;
    if (json.is_string()) {
        result = checked(json.get_ref<const std::string&>());
    } else if (json.is_boolean()) {
        result = json.get<bool>();
    } else if (json.is_number()) {
        result = convertNumber(json);
    } else if (json.is_array()) {
        result = convertArray(json);
    } else if (json.is_object()) {
        result = convertObject(json);
    } else if (!json.is_null()) {
        refuse(json.is_binary() ? "binary data, which JSON does not have" : "a discarded value");
    }
    --depth_;
    return result;
}

} // namespace internal
/// @endcond

/// Converts an nlohmann-json value. Numbers are converted as by `Value`.
///
/// Threads: may be called from any thread while none changes `json`.
/// Errors: `JsonError` for malformed UTF-8, non-finite numbers, binary data, discarded
///   values, and more than `Value::deepest` levels. It gives the JSON pointer of the value, not a
///   line: `/users/0/name: malformed UTF-8`. `std::length_error` for text of more than 4 GiB -
///   1 byte; `std::bad_alloc`.
/// @param json the value to convert
/// @return the value
inline Value valueFromJson(const nlohmann::json& json) {
    return internal::JsonConverter().convert(json);
}

} // namespace kel::Stencilor

#endif
