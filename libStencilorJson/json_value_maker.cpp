#include <libStencilorJson/json_text.h>
#include <libStencilorJson/json_value_maker.h>

namespace kel::Stencilor::internal {

void ValueMaker::addScalar(Value value, JsonRange range) {
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

/// `Context` also rejects such a value, but does not know its position in the text.
void ValueMaker::refuseAsBoolean(std::size_t offset) const {
    if (!open_.empty() && open_.back().name == "$boolean") {
        throw errorAt(text_, offset, "expected true or false as the value of \"$boolean\"");
    }
}

} // namespace kel::Stencilor::internal
