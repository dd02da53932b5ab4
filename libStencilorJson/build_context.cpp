#include <libStencilorJson/JsonValue.h>
#include <libStencilorJson/measure_names.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace kel::Stencilor {

namespace {

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

/// Gives `value` to `parent`, which has no entry of that name.
void adopt(ContextBase& parent, const String& name, std::unique_ptr<ContextBase> value) {
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
        if (object.names[i] != jsonBooleanMember && !target.containsKey(name)) {
            adopt(target, name, buildAlias(object.items[i], built.find(object.names[i])));
        }
    }
    for (const std::size_t i : findNestedObjects(object)) {
        addDottedNames(target, path + "." + object.names[i], object.items[i],
                       *built.find(object.names[i]));
    }
}

std::unique_ptr<ContextBase> build(const JsonValue& value);

/// The value that an object becomes, still without its members.
std::unique_ptr<ContextBase> buildEmptyObject(const JsonValue& object) {
    const JsonValue* const truth = internal::findBooleanMember(object);
    if (truth == nullptr) {
        return std::make_unique<ContextDictionary>();
    }
    if (truth->kind != JsonValue::Kind::Boolean) {
        throw JsonError("expected true or false as the value of \"$boolean\"");
    }
    return std::make_unique<ContextBoolean>(truth->truth);
}

std::unique_ptr<ContextBase> buildObject(const JsonValue& object) {
    std::unique_ptr<ContextBase> result = buildEmptyObject(object);
    for (std::size_t i = 0; i < object.items.size(); ++i) {
        const String name(object.names[i]);
        if (result->containsKey(name)) {
            throw JsonError("duplicate name \"" + object.names[i] + "\"");
        }
        if (object.names[i] != jsonBooleanMember) {
            adopt(*result, name, build(object.items[i]));
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

} // namespace

std::unique_ptr<ContextBase> contextFromJsonValue(const JsonValue& value) {
    if (internal::measureDottedNames(value) > jsonNamesLimit) {
        throw JsonError("the context is too large: the dotted names of its nested objects would "
                        "take over " +
                        std::to_string(jsonNamesLimit >> 20) + " MiB");
    }
    return build(value);
}

std::unique_ptr<ContextBase> contextFromJsonText(std::string_view text, JsonRoot root) {
    return contextFromJsonValue(parseJson(text, root));
}

} // namespace kel::Stencilor
