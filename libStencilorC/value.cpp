#include <libStencilorC/border.h>
#include <libStencilorC/handles.h>

#include <utility>

using namespace kel::Stencilor;
using namespace kel::Stencilor::internal;

namespace {

/// `source` returns the value.
template <typename Source>
int create(stencilor_value** value, Source source) noexcept {
    return guarded([&] {
        stencilor_value*& made = placeOf(value);
        made = new stencilor_value{source()};
    });
}

template <typename Source>
int add(stencilor_value* list, Source source) noexcept {
    return guarded([&] {
        Value item = source();
        given(list).value.add(std::move(item));
    });
}

template <typename Source>
int set(stencilor_value* dictionary, const char* key, size_t keySize, Source source) noexcept {
    return guarded([&] {
        Value member = source();
        given(dictionary).value.set(given(key, keySize), std::move(member));
    });
}

// Each returns a function that creates a value.

auto null() {
    return [] { return Value(nullptr); };
}

auto boolean(int is_true) {
    return [is_true] { return Value(is_true != 0); };
}

auto text(const char* bytes, size_t size) {
    return [bytes, size] { return Value(given(bytes, size)); };
}

auto rawText(const char* bytes, size_t size) {
    return [bytes, size] { return Value::raw(given(bytes, size)); };
}

template <typename Number>
auto number(Number source) {
    return [source] { return Value(source); };
}

/// Moves a value out of its handle.
auto taken(const stencilor_value* into, stencilor_value* source) {
    return [into, source] {
        failUnlessOk(into == source ? STENCILOR_INVALID_ARGUMENT : STENCILOR_OK);
        return std::move(given(source).value);
    };
}

} // namespace

int stencilor_value_null(stencilor_value** value) {
    return create(value, null());
}

int stencilor_value_boolean(int is_true, stencilor_value** value) {
    return create(value, boolean(is_true));
}

int stencilor_value_text(const char* bytes, size_t size, stencilor_value** value) {
    return create(value, text(bytes, size));
}

int stencilor_value_raw_text(const char* bytes, size_t size, stencilor_value** value) {
    return create(value, rawText(bytes, size));
}

int stencilor_value_integer(int64_t source, stencilor_value** value) {
    return create(value, number(source));
}

int stencilor_value_double(double source, stencilor_value** value) {
    return create(value, number(source));
}

int stencilor_value_list(stencilor_value** value) {
    return create(value, [] { return Value::list(); });
}

int stencilor_value_dictionary(stencilor_value** value) {
    return create(value, [] { return Value(); });
}

int stencilor_value_parse_json(const char* bytes, size_t size, stencilor_value** value,
                               stencilor_error** error) {
    return guarded(
        [&] {
            stencilor_value*& made = placeOf(value);
            made = new stencilor_value{valueFromJsonText(given(bytes, size))};
        },
        error);
}

int stencilor_value_copy(const stencilor_value* value, stencilor_value** copy) {
    return create(copy, [value] { return given(value).value; });
}

int stencilor_value_kind(const stencilor_value* value) {
    return value == nullptr ? STENCILOR_KIND_NULL : static_cast<int>(value->value.kind());
}

int stencilor_value_add(stencilor_value* list, stencilor_value* item) {
    return add(list, taken(list, item));
}

int stencilor_value_add_null(stencilor_value* list) {
    return add(list, null());
}

int stencilor_value_add_boolean(stencilor_value* list, int is_true) {
    return add(list, boolean(is_true));
}

int stencilor_value_add_text(stencilor_value* list, const char* bytes, size_t size) {
    return add(list, text(bytes, size));
}

int stencilor_value_add_raw_text(stencilor_value* list, const char* bytes, size_t size) {
    return add(list, rawText(bytes, size));
}

int stencilor_value_add_integer(stencilor_value* list, int64_t source) {
    return add(list, number(source));
}

int stencilor_value_add_double(stencilor_value* list, double source) {
    return add(list, number(source));
}

int stencilor_value_set(stencilor_value* dictionary, const char* key, size_t keySize,
                        stencilor_value* member) {
    return set(dictionary, key, keySize, taken(dictionary, member));
}

int stencilor_value_set_null(stencilor_value* dictionary, const char* key, size_t keySize) {
    return set(dictionary, key, keySize, null());
}

int stencilor_value_set_boolean(stencilor_value* dictionary, const char* key, size_t keySize,
                                int is_true) {
    return set(dictionary, key, keySize, boolean(is_true));
}

int stencilor_value_set_text(stencilor_value* dictionary, const char* key, size_t keySize,
                             const char* bytes, size_t size) {
    return set(dictionary, key, keySize, text(bytes, size));
}

int stencilor_value_set_raw_text(stencilor_value* dictionary, const char* key, size_t keySize,
                                 const char* bytes, size_t size) {
    return set(dictionary, key, keySize, rawText(bytes, size));
}

int stencilor_value_set_integer(stencilor_value* dictionary, const char* key, size_t keySize,
                                int64_t source) {
    return set(dictionary, key, keySize, number(source));
}

int stencilor_value_set_double(stencilor_value* dictionary, const char* key, size_t keySize,
                               double source) {
    return set(dictionary, key, keySize, number(source));
}

void stencilor_value_free(stencilor_value* value) {
    delete value;
}

int stencilor_context_create(const stencilor_value* value, int flags, stencilor_context** context,
                             stencilor_error** error) {
    return guarded(
        [&] {
            stencilor_context*& made = placeOf(context);
            const Value& root = given(value).value;
            failUnlessOk((flags & ~STENCILOR_CONTEXT_POSITIONS) != 0 ? STENCILOR_INVALID_ARGUMENT
                                                                     : STENCILOR_OK);
            made = new stencilor_context{
                makeContext(root, (flags & STENCILOR_CONTEXT_POSITIONS) != 0)};
        },
        error);
}

void stencilor_context_free(stencilor_context* context) {
    delete context;
}
