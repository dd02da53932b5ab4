#ifndef LIBSTENCILORJSON_JSON_VALUE_MAKER_H
#define LIBSTENCILORJSON_JSON_VALUE_MAKER_H

#include <libStencilor/Value.h>
#include <libStencilorJson/json_receiver.h>

#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

namespace kel::Stencilor::internal {

/// Makes the value of a JSON text. Derived classes may convert numbers and strings in other ways.
///
/// Ownership: borrows the text.
/// Errors: `JsonError` if a `$boolean` is not a boolean.
class ValueMaker : public JsonReceiver {
  public:
    explicit ValueMaker(std::string_view text) : text_(text) {}

    void null(JsonRange range) override { addScalar(nullptr, range); }
    void boolean(bool value, JsonRange) override { add(value); }
    void number(std::string_view written, JsonRange range) override { addScalar(written, range); }
    void string(std::string_view text, JsonRange range) override { addScalar(text, range); }
    void beginArray(std::size_t offset) override { open(Value::list(), offset); }
    void endArray(JsonRange) override { close(); }
    void beginObject(std::size_t offset) override { open(Value(), offset); }
    void name(std::string_view name, JsonRange) override { open_.back().name = String(name); }
    void endObject(JsonRange) override { close(); }

    Value take() { return std::move(root_); }

  protected:
    void addScalar(Value value, JsonRange range);

  private:
    /// An open array or object.
    struct Open {
        Value value;
        String name{}; // the name of the current member of an object
    };

    void open(Value value, std::size_t offset);
    void close();
    void add(Value value);
    void refuseAsBoolean(std::size_t offset) const;

    std::string_view text_;
    Value root_;
    std::vector<Open> open_;
};

} // namespace kel::Stencilor::internal

#endif
