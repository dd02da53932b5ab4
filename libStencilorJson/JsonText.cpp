#include <libStencilorJson/JsonText.h>
#include <libStencilorJson/json_grammar.h>
#include <libStencilorJson/json_text.h>

#include <utility>
#include <vector>

namespace kel::Stencilor {

namespace {

/// Makes the value of a text.
class ValueMaker final : public internal::JsonReceiver {
  public:
    using Range = internal::JsonRange;

    explicit ValueMaker(std::string_view text) : text_(text) {}

    void null(Range range) override { addScalar(nullptr, range); }
    void boolean(bool value, Range) override { add(value); }
    void number(std::string_view written, Range range) override { addScalar(written, range); }
    void string(std::string_view text, Range range) override { addScalar(text, range); }
    void beginArray(std::size_t offset) override { open(Value::list(), offset); }
    void endArray(Range) override { close(); }
    void beginObject(std::size_t offset) override { open(Value(), offset); }
    void name(std::string_view name, Range) override { open_.back().name = String(name); }
    void endObject(Range) override { close(); }

    Value take() { return std::move(root_); }

  private:
    /// An array or object whose end has not been read.
    struct Open {
        Value value;
        String name{}; // of the member that is read, in an object
    };

    void addScalar(Value value, Range range);
    void open(Value value, std::size_t offset);
    void close();
    void add(Value value);
    void refuseAsBoolean(std::size_t offset) const;

    std::string_view text_;
    Value root_;
    std::vector<Open> open_;
};

void ValueMaker::addScalar(Value value, Range range) {
    refuseAsBoolean(range.begin);
    add(std::move(value));
}

void ValueMaker::open(Value value, std::size_t offset) {
    refuseAsBoolean(offset);
    open_.push_back({std::move(value)});
}

void ValueMaker::close() {
    Value value = std::move(open_.back().value);
    open_.pop_back();
    add(std::move(value));
}

void ValueMaker::add(Value value) {
    if (open_.empty()) {
        root_ = std::move(value);
    } else if (open_.back().value.kind() == Value::Kind::List) {
        open_.back().value.add(std::move(value));
    } else {
        open_.back().value.set(open_.back().name, std::move(value));
    }
}

/// `Context` refuses such a value, too, but no longer knows where it is in the text.
void ValueMaker::refuseAsBoolean(std::size_t offset) const {
    if (!open_.empty() && open_.back().name == "$boolean") {
        throw internal::errorAt(text_, offset,
                                "expected true or false as the value of \"$boolean\"");
    }
}

} // namespace

JsonError::JsonError(std::size_t line, std::size_t column, const std::string& reason,
                     std::size_t offset)
    : std::runtime_error(std::to_string(line) + ":" + std::to_string(column) + ": " + reason),
      line_(line), column_(column), offset_(offset),
      reasonBegin_(std::string_view(what()).size() - reason.size()) {}

JsonError::JsonError(const std::string& reason) : std::runtime_error(reason) {}

Value valueFromJsonText(std::string_view text) {
    ValueMaker maker(text);
    internal::JsonGrammar(text, maker).read();
    return maker.take();
}

} // namespace kel::Stencilor
