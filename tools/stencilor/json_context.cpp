#include <tools/stencilor/json_context.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace stencilor {

namespace {

using kel::Stencilor::ContextBase;
using kel::Stencilor::ContextBoolean;
using kel::Stencilor::ContextDictionary;
using kel::Stencilor::ContextIterable;
using kel::Stencilor::ContextString;

/// A list under a dotted name: its elements belong to the list that it was copied from.
class SharedList final : public ContextIterable {
  public:
    explicit SharedList(const ContextIterable& owner) : ContextIterable(owner) {}
    SharedList(const SharedList&) = delete;
    SharedList& operator=(const SharedList&) = delete;
    // Assigning drops the elements without deleting them.
    ~SharedList() override { ContextIterable::operator=(ContextIterable()); }
};

/// A boolean under a dotted name: its children belong to the boolean that it was copied from.
class SharedBoolean final : public ContextBoolean {
  public:
    explicit SharedBoolean(const ContextBoolean& owner) : ContextBoolean(owner) {}
    SharedBoolean(const SharedBoolean&) = delete;
    SharedBoolean& operator=(const SharedBoolean&) = delete;
    ~SharedBoolean() override { ContextBoolean::operator=(ContextBoolean(false)); }
};

const JsonValue* findBooleanMember(const JsonValue& object) {
    const auto found = std::find(object.names.begin(), object.names.end(), booleanMember);
    return found == object.names.end()
               ? nullptr
               : &object.items[static_cast<std::size_t>(found - object.names.begin())];
}

/// Gives `value` to `parent`, which has no entry of that name.
void adopt(ContextBase& parent, const std::string& name, std::unique_ptr<ContextBase> value) {
    parent.insert(name, value.get());
    value.release();
}

/// The objects among the members of `object`, those with the longest names first: where several
/// of them lead to the same dotted name, the first wins.
std::vector<std::size_t> findNestedObjects(const JsonValue& object) {
    std::vector<std::size_t> nested;
    for (std::size_t i = 0; i < object.items.size(); ++i) {
        if (object.items[i].kind == JsonValue::Kind::Object) {
            nested.push_back(i);
        }
    }
    std::stable_sort(nested.begin(), nested.end(), [&object](std::size_t a, std::size_t b) {
        return object.names[a].size() > object.names[b].size();
    });
    return nested;
}

/// A value to stand under a dotted name beside `original`, which was built from `value`.
std::unique_ptr<ContextBase> buildAlias(const JsonValue& value, const ContextBase* original) {
    if (const auto* string = dynamic_cast<const ContextString*>(original)) {
        return std::make_unique<ContextString>(*string);
    }
    if (const auto* boolean = dynamic_cast<const ContextBoolean*>(original)) {
        return std::make_unique<SharedBoolean>(*boolean);
    }
    if (const auto* list = dynamic_cast<const ContextIterable*>(original)) {
        return std::make_unique<SharedList>(*list);
    }
    return value.kind == JsonValue::Kind::Object ? std::make_unique<ContextDictionary>() : nullptr;
}

/// Adds to `target` the members of `object`, and of the objects in it, under names that begin with
/// `path`. `built` is what was built from `object`.
void addDottedNames(ContextBase& target, const std::string& path, const JsonValue& object,
                    const ContextBase& built) {
    for (std::size_t i = 0; i < object.items.size(); ++i) {
        const std::string name = path + "." + object.names[i];
        if (object.names[i] != booleanMember && !target.containsKey(name)) {
            adopt(target, name, buildAlias(object.items[i], built.find(object.names[i])));
        }
    }
    for (const std::size_t i : findNestedObjects(object)) {
        addDottedNames(target, path + "." + object.names[i], object.items[i],
                       *built.find(object.names[i]));
    }
}

std::unique_ptr<ContextBase> build(const JsonValue& value);

std::unique_ptr<ContextBase> buildObject(const JsonValue& object) {
    std::unique_ptr<ContextBase> result;
    if (const JsonValue* const truth = findBooleanMember(object)) {
        result = std::make_unique<ContextBoolean>(truth->truth);
    } else {
        result = std::make_unique<ContextDictionary>();
    }
    for (std::size_t i = 0; i < object.items.size(); ++i) {
        if (object.names[i] != booleanMember) {
            adopt(*result, object.names[i], build(object.items[i]));
        }
    }
    for (const std::size_t i : findNestedObjects(object)) {
        addDottedNames(*result, object.names[i], object.items[i], *result->find(object.names[i]));
    }
    return result;
}

std::unique_ptr<ContextBase> buildArray(const JsonValue& array) {
    auto result = std::make_unique<ContextIterable>();
    for (const JsonValue& item : array.items) {
        std::unique_ptr<ContextBase> element = build(item);
        result->add(element.get());
        element.release();
    }
    return result;
}

std::unique_ptr<ContextBase> build(const JsonValue& value) {
    switch (value.kind) {
    case JsonValue::Kind::Null:
        return nullptr;
    case JsonValue::Kind::Boolean:
        return std::make_unique<ContextBoolean>(value.truth);
    case JsonValue::Kind::Number:
    case JsonValue::Kind::String:
        return std::make_unique<ContextString>(value.text);
    case JsonValue::Kind::Array:
        return buildArray(value);
    case JsonValue::Kind::Object:
        return buildObject(value);
    }
    return nullptr;
}

/// The names that an object answers to, its own and the dotted ones, as sizes in bytes.
struct Names {
    std::uint64_t count = 0;
    std::uint64_t text = 0;   // of the names
    std::uint64_t values = 0; // of what a copy of each value takes beside its name

    // A map's node, the name's string and the value, roughly.
    static constexpr std::uint64_t perEntry = 192;

    std::uint64_t size() const { return count * perEntry + text; }
};

Names measureNames(const JsonValue& object, std::uint64_t& dotted);

/// Measures what stands in `value`, and what a further copy of it takes.
std::uint64_t measureCopy(const JsonValue& value, Names& names, std::uint64_t& dotted) {
    if (value.kind == JsonValue::Kind::Object) {
        names = measureNames(value, dotted);
        return findBooleanMember(value) != nullptr ? names.size() : 0;
    }
    if (value.kind == JsonValue::Kind::Array) {
        Names ofItem;
        for (const JsonValue& item : value.items) {
            measureCopy(item, ofItem, dotted);
        }
        return value.items.size() * sizeof(ContextBase*);
    }
    return value.text.size();
}

/// Measures the names of `object`, and adds to `dotted` what the dotted ones take in it and in all
/// that it holds.
Names measureNames(const JsonValue& object, std::uint64_t& dotted) {
    Names all;
    for (std::size_t i = 0; i < object.items.size(); ++i) {
        const std::uint64_t ownName = object.names[i].size();
        Names below;
        const std::uint64_t copy = measureCopy(object.items[i], below, dotted);
        below.text += below.count * (ownName + 1);
        dotted += below.size() + below.values;
        all.count += below.count + 1;
        all.text += below.text + ownName;
        all.values += below.values + copy;
    }
    return all;
}

} // namespace

std::uint64_t measureDottedNames(const JsonValue& root) {
    Names names;
    std::uint64_t dotted = 0;
    measureCopy(root, names, dotted);
    return dotted;
}

std::unique_ptr<ContextBase> buildContext(const JsonValue& root) {
    return measureDottedNames(root) > dottedNamesLimit ? nullptr : build(root);
}

} // namespace stencilor
