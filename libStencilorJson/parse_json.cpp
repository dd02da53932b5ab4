#include <libStencilorJson/JsonValue.h>
#include <libStencilorJson/json_grammar.h>
#include <libStencilorJson/json_text.h>

#include <utility>

namespace kel::Stencilor {

namespace {

/// Makes the value of a text.
class ValueMaker final : public internal::JsonReceiver {
  public:
    using Range = internal::JsonRange;

    explicit ValueMaker(std::string_view text) : text_(text) {}

    void null(Range range) override { add({}, range.begin); }
    void boolean(bool value, Range range) override {
        add({.kind = JsonValue::Kind::Boolean, .truth = value}, range.begin);
    }
    void number(std::string_view written, Range range) override {
        add({.kind = JsonValue::Kind::Number, .text = std::string(written)}, range.begin);
    }
    void string(std::string_view text, Range range) override {
        add({.kind = JsonValue::Kind::String, .text = std::string(text)}, range.begin);
    }
    void beginArray(std::size_t offset) override { open(JsonValue::Kind::Array, offset); }
    void endArray(Range) override { open_.pop_back(); }
    void beginObject(std::size_t offset) override { open(JsonValue::Kind::Object, offset); }
    void name(std::string_view name, Range) override { open_.back()->names.emplace_back(name); }
    void endObject(Range) override { open_.pop_back(); }

    JsonValue take() { return std::move(root_); }

  private:
    void open(JsonValue::Kind kind, std::size_t offset) {
        open_.push_back(&add({.kind = kind}, offset));
    }
    JsonValue& add(JsonValue value, std::size_t offset);

    std::string_view text_;
    JsonValue root_;
    // Their addresses are stable: the list that holds one does not grow before the end of that one.
    std::vector<JsonValue*> open_;
};

JsonValue& ValueMaker::add(JsonValue value, std::size_t offset) {
    if (open_.empty()) {
        return root_ = std::move(value);
    }
    JsonValue& parent = *open_.back();
    if (parent.kind == JsonValue::Kind::Object && parent.names.back() == jsonBooleanMember &&
        value.kind != JsonValue::Kind::Boolean) {
        throw internal::errorAt(text_, offset,
                                "expected true or false as the value of \"$boolean\"");
    }
    return parent.items.emplace_back(std::move(value));
}

} // namespace

JsonValue parseJson(std::string_view text, JsonRoot root) {
    ValueMaker maker(text);
    internal::JsonGrammar(text, root, maker).read();
    return maker.take();
}

} // namespace kel::Stencilor
