#ifndef LIBSTENCILORJSON_JSON_RECEIVER_H
#define LIBSTENCILORJSON_JSON_RECEIVER_H

#include <cstddef>
#include <string_view>

namespace kel::Stencilor::internal {

/// A range of JSON text, in bytes.
struct JsonRange {
    std::size_t begin = 0;
    std::size_t end = 0; ///< after the last byte
};

/// Receives the contents of JSON text, in order.
///
/// Ranges include quotation marks, and both brackets of an array or object.
/// Ownership: strings are only valid during the call.
/// Errors: an exception ends the parsing and reaches its caller.
class JsonReceiver {
  public:
    virtual ~JsonReceiver() = default;

    virtual void null(JsonRange range) = 0;
    virtual void boolean(bool value, JsonRange range) = 0;
    virtual void number(std::string_view written, JsonRange range) = 0;
    virtual void string(std::string_view text, JsonRange range) = 0; ///< without its escapes
    virtual void beginArray(std::size_t offset) = 0;
    virtual void endArray(JsonRange range) = 0;
    virtual void beginObject(std::size_t offset) = 0;
    virtual void name(std::string_view name, JsonRange range) = 0; ///< of the value that follows
    virtual void endObject(JsonRange range) = 0;
};

} // namespace kel::Stencilor::internal

#endif
