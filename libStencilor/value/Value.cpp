#include <libStencilor/Value.h>
#include <libStencilor/value/number_text.h>
#include <libStencilor/value/value_access.h>

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace kel::Stencilor {

namespace {

// Created when the library is loaded. If a process forked while another thread created it, the
// child would wait forever.
const String noText;

using internal::value_access;

template <Value::Kind kind>
constexpr auto in_place = std::in_place_index<static_cast<std::size_t>(kind)>;

template <Value::Kind kind, typename Data>
auto* getIf(Data& data) noexcept {
    return std::get_if<static_cast<std::size_t>(kind)>(&data);
}

bool isSame(const String& one, const String& another) {
    return !(one < another) && !(another < one);
}

bool areSame(const std::map<String, Value>& some, const std::map<String, Value>& others) {
    return std::equal(some.begin(), some.end(), others.begin(), others.end(),
                      [](const auto& one, const auto& another) {
                          return isSame(one.first, another.first) && one.second == another.second;
                      });
}

void checkDepth(unsigned int depth) {
    if (depth > Value::deepest) {
        throw std::length_error("a value nests more than 512 levels");
    }
}

} // namespace

String internal::makeString(std::string_view bytes) {
    if (bytes.size() > std::numeric_limits<unsigned int>::max()) {
        throw std::length_error("a string is longer than 4 GiB - 1 byte");
    }
    return String(bytes.data(), static_cast<unsigned int>(bytes.size()));
}

Value::Value() : data_(std::make_unique<Dictionary>()) {}

Value::Value(std::initializer_list<Member> members) : Value() {
    for (const Member& member : members) {
        set(std::move(member.key_), std::move(member.value_));
    }
}

Value::Value(Data data) noexcept : data_(std::move(data)) {}

Value::Value(const Value& other) : data_(copyOf(other.data_)) {}

Value::Value(Value&& other) noexcept : data_(std::exchange(other.data_, nullptr)) {}

Value& Value::operator=(const Value& other) {
    return *this = Value(other); // complete before this value changes: `other` may be part of it
}

Value& Value::operator=(Value&& other) noexcept {
    Data taken = std::exchange(other.data_, nullptr);
    data_ = std::move(taken);
    return *this;
}

Value::~Value() = default;

Value::Data Value::copyOf(const Data& data) {
    switch (static_cast<Kind>(data.index())) {
    case Kind::Null:
        break;
    case Kind::Boolean:
        return *getIf<Kind::Boolean>(data);
    case Kind::Text:
        return Data(in_place<Kind::Text>, *getIf<Kind::Text>(data));
    case Kind::RawText:
        return Data(in_place<Kind::RawText>, *getIf<Kind::RawText>(data));
    case Kind::List:
        return std::make_unique<List>(**getIf<Kind::List>(data));
    case Kind::Dictionary:
        return std::make_unique<Dictionary>(**getIf<Kind::Dictionary>(data));
    }
    return nullptr;
}

Value Value::null() noexcept {
    return Value(Data(nullptr));
}

Value Value::boolean(bool value) noexcept {
    return Value(Data(value));
}

Value Value::plain(String text) noexcept {
    return Value(Data(in_place<Kind::Text>, std::move(text)));
}

Value Value::number(std::int64_t number) {
    return plain(internal::numberText(number));
}

Value Value::number(std::uint64_t number) {
    return plain(internal::numberText(number));
}

Value Value::number(float number) {
    return plain(internal::numberText(number));
}

Value Value::number(double number) {
    return plain(internal::numberText(number));
}

Value Value::raw(String text) {
    return Value(Data(in_place<Kind::RawText>, std::move(text)));
}

Value Value::list(std::initializer_list<Value> items) {
    Value result(Data(std::make_unique<List>()));
    for (const Value& item : items) {
        result.add(item);
    }
    return result;
}

unsigned int Value::depth() const noexcept {
    if (const auto* const list = getIf<Kind::List>(data_)) {
        return (*list)->depth;
    }
    const auto* const dictionary = getIf<Kind::Dictionary>(data_);
    return dictionary == nullptr ? 0 : (*dictionary)->depth;
}

unsigned int Value::Dictionary::findDepth() const noexcept {
    unsigned int deepestMember = 0;
    for (const auto& [key, member] : members) {
        deepestMember = std::max(deepestMember, member.depth());
    }
    return deepestMember + 1;
}

bool Value::isTrue() const noexcept {
    const bool* const value = getIf<Kind::Boolean>(data_);
    return value != nullptr && *value;
}

const String& Value::text() const noexcept {
    const String* const text = kind() == Kind::RawText ? getIf<Kind::RawText>(data_) //
                                                       : getIf<Kind::Text>(data_);
    return text == nullptr ? noText : *text;
}

std::size_t Value::size() const noexcept {
    if (const auto* const list = getIf<Kind::List>(data_)) {
        return (*list)->items.size();
    }
    const auto* const dictionary = getIf<Kind::Dictionary>(data_);
    return dictionary == nullptr ? 0 : (*dictionary)->members.size();
}

const Value& Value::at(std::size_t index) const {
    const auto* const list = getIf<Kind::List>(data_);
    if (list == nullptr || index >= (*list)->items.size()) {
        throw std::out_of_range("a list has no item of this index");
    }
    return (*list)->items[index];
}

const Value* Value::find(const String& key) const noexcept {
    const auto* const dictionary = getIf<Kind::Dictionary>(data_);
    if (dictionary == nullptr) {
        return nullptr;
    }
    const auto found = (*dictionary)->members.find(key);
    return found == (*dictionary)->members.end() ? nullptr : &found->second;
}

std::vector<String> Value::keys() const {
    std::vector<String> result;
    if (const auto* const dictionary = getIf<Kind::Dictionary>(data_)) {
        result.reserve((*dictionary)->members.size());
        for (const auto& [key, member] : (*dictionary)->members) {
            result.push_back(key);
        }
    }
    return result;
}

void Value::set(String key, Value value) {
    const auto* const held = getIf<Kind::Dictionary>(data_);
    if (held == nullptr) {
        throw std::logic_error("a value that is not a dictionary has no members");
    }
    Dictionary& dictionary = **held;
    const unsigned int depth = value.depth() + 1;
    checkDepth(depth);
    const auto [place, isNew] = dictionary.members.try_emplace(std::move(key), std::move(value));
    const bool wasDeepest = !isNew && place->second.depth() + 1 == dictionary.depth;
    if (!isNew) {
        place->second = std::move(value); // still valid, not moved from
    }
    const bool shrinks = wasDeepest && depth < dictionary.depth;
    dictionary.depth = shrinks ? dictionary.findDepth() : std::max(dictionary.depth, depth);
}

void Value::add(Value item) {
    const auto* const list = getIf<Kind::List>(data_);
    if (list == nullptr) {
        throw std::logic_error("a value that is not a list has no items");
    }
    const unsigned int depth = item.depth() + 1;
    checkDepth(depth);
    (*list)->items.push_back(std::move(item));
    (*list)->depth = std::max((*list)->depth, depth);
}

bool Value::operator==(const Value& other) const {
    if (kind() != other.kind()) {
        return false;
    }
    switch (kind()) {
    case Kind::Null:
        break;
    case Kind::Boolean:
        return isTrue() == other.isTrue();
    case Kind::Text:
    case Kind::RawText:
        return isSame(text(), other.text());
    case Kind::List:
        return value_access::items(*this) == value_access::items(other);
    case Kind::Dictionary:
        return areSame(value_access::members(*this), value_access::members(other));
    }
    return true;
}

} // namespace kel::Stencilor
