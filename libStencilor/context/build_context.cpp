#include <libStencilor/context/build_context.h>
#include <libStencilor/context/context_access.h>
#include <libStencilor/context/shared_values.h>
#include <libStencilor/value/number_text.h>
#include <libStencilor/value/value_access.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <stdexcept>

namespace kel::Stencilor::internal {

namespace {

using Kind = Value::Kind;
using Members = std::map<String, Value>;

// The approximate size of an entry without its strings: a map node and a value.
constexpr std::uint64_t perEntry = 192;

/// The memory for a value under a dotted name, in addition to its entry.
std::uint64_t measureAlias(const ContextBase* original) {
    if (const auto* string = dynamic_cast<const ContextString*>(original)) {
        return context_access::text(*string).size();
    }
    if (const auto* list = dynamic_cast<const ContextIterable*>(original)) {
        return list->size() * sizeof(void*);
    }
    std::uint64_t size = 0;
    if (const auto* boolean = dynamic_cast<const ContextBoolean*>(original)) {
        for (const auto& [name, child] : context_access::children(*boolean)) {
            size += perEntry + name.size();
        }
    }
    return size;
}

/// Creates the value for a dotted name of `original`. A dictionary stays empty, because no template
/// can look into it.
std::unique_ptr<ContextBase> buildAlias(const ContextBase* original) {
    if (original == nullptr) {
        return nullptr;
    }
    if (const auto* string = dynamic_cast<const ContextString*>(original)) {
        const auto* const raw = dynamic_cast<const ContextRawString*>(string);
        return raw != nullptr ? std::make_unique<ContextRawString>(*raw)
                              : std::make_unique<ContextString>(*string);
    }
    if (const auto* boolean = dynamic_cast<const ContextBoolean*>(original)) {
        return std::make_unique<shared_boolean>(*boolean);
    }
    if (const auto* list = dynamic_cast<const ContextIterable*>(original)) {
        return std::make_unique<shared_list>(*list);
    }
    return std::make_unique<ContextDictionary>();
}

/// Builds context values from values.
class value_reader {
  public:
    explicit value_reader(context_builder& builder) : builder_(builder) {}

    std::unique_ptr<ContextBase> build(const Value& value);

  private:
    std::unique_ptr<ContextBase> buildDictionary(const Members& members);
    std::unique_ptr<ContextBase> buildList(const std::vector<Value>& items);

    context_builder& builder_;
    const String booleanKey_ = context_builder::booleanKey;
};

std::unique_ptr<ContextBase> value_reader::build(const Value& value) {
    switch (value.kind()) {
    case Kind::Null:
        break;
    case Kind::Boolean:
        return std::make_unique<ContextBoolean>(value.isTrue());
    case Kind::Text:
        return std::make_unique<ContextString>(value.text());
    case Kind::RawText:
        return std::make_unique<ContextRawString>(value.text());
    case Kind::List:
        return buildList(value_access::items(value));
    case Kind::Dictionary:
        return buildDictionary(value_access::members(value));
    }
    return nullptr;
}

/// Creates the context value of a dictionary, without its members.
std::unique_ptr<ContextBase> buildEmptyDictionary(const Value* boolean) {
    if (boolean == nullptr) {
        return std::make_unique<ContextDictionary>();
    }
    context_builder::checkBoolean(boolean->kind() == Kind::Boolean);
    return std::make_unique<ContextBoolean>(boolean->isTrue());
}

std::unique_ptr<ContextBase> value_reader::buildDictionary(const Members& members) {
    const auto boolean = members.find(booleanKey_);
    std::unique_ptr<ContextBase> result =
        buildEmptyDictionary(boolean == members.end() ? nullptr : &boolean->second);
    for (auto member = members.begin(); member != members.end(); ++member) {
        if (member != boolean) {
            ContextBase*& entry = (*result)[member->first];
            entry = build(member->second).release();
        }
    }
    builder_.addDottedNames(*result);
    return result;
}

std::unique_ptr<ContextBase> value_reader::buildList(const std::vector<Value>& items) {
    auto result = std::make_unique<ContextIterable>();
    std::vector<ContextBase*>& elements = context_access::elements(*result);
    elements.reserve(items.size());
    for (const Value& item : items) {
        std::unique_ptr<ContextBase> element = build(item);
        if (item.kind() != Kind::Dictionary) {
            element = builder_.wrapItem(std::move(element));
        }
        elements.push_back(element.release());
    }
    builder_.addPositions(*result);
    return result;
}

/// Adds a child to `element`, unless it has an entry with that name.
template <typename Child, typename Source>
void addMissing(ContextBase& element, const String& key, const Source& source) {
    if (!element.containsKey(key)) {
        ContextBase*& child = element[key];
        child = new Child(source);
    }
}

} // namespace

void context_builder::checkBoolean(bool isBoolean) {
    if (!isBoolean) {
        throw std::invalid_argument("the value of \"$boolean\" is neither true nor false");
    }
}

void context_builder::addDottedNames(ContextBase& dictionary) {
    std::vector<const child_map::value_type*> nested; // adding others does not move them
    for (const auto& child : context_access::children(dictionary)) {
        if (child.second != nullptr && !context_access::children(*child.second).empty()) {
            nested.push_back(&child);
        }
    }
    // Backwards, because the longest key wins: if two keys lead to the same dotted name, one is a
    // prefix of the other and precedes it.
    for (auto child = nested.rbegin(); child != nested.rend(); ++child) {
        addDottedNames(dictionary, (*child)->first, *(*child)->second);
    }
}

/// Adds the names of `nested`, the child `key`, prefixed with `key` and a dot.
void context_builder::addDottedNames(ContextBase& dictionary, const String& key,
                                     const ContextBase& nested) {
    String prefix = key;
    prefix += ".";
    for (const auto& [name, original] : context_access::children(nested)) {
        String dotted = prefix;
        dotted += name;
        if (!dictionary.containsKey(dotted)) {
            countDottedName(dotted, original);
            ContextBase*& entry = dictionary[dotted];
            entry = buildAlias(original).release();
        }
    }
}

void context_builder::countDottedName(const String& name, const ContextBase* original) {
    dottedNames_ += perEntry + name.size() + measureAlias(original);
    if (dottedNames_ > limit_) {
        throw std::length_error("the context is too large: the dotted names of its nested "
                                "dictionaries would take over 512 MiB");
    }
}

std::unique_ptr<ContextBase> context_builder::wrapItem(std::unique_ptr<ContextBase> item) const {
    if (item == nullptr && !options_.positions) {
        return nullptr;
    }
    auto element = std::make_unique<ContextDictionary>();
    if (item != nullptr) {
        ContextBase*& value = (*element)[valueKey_];
        value = item.release();
    }
    return element;
}

void context_builder::addPositions(ContextIterable& list) const {
    if (!options_.positions) {
        return;
    }
    const std::vector<ContextBase*>& elements = context_access::elements(list);
    for (std::size_t index = 0; index < elements.size(); ++index) {
        addPosition(*elements[index], index, elements.size());
    }
}

void context_builder::addPosition(ContextBase& element, std::size_t index,
                                  std::size_t count) const {
    addMissing<ContextString>(element, indexKey_, numberText(std::uint64_t{index} + 1));
    addMissing<ContextBoolean>(element, firstKey_, index == 0);
    addMissing<ContextBoolean>(element, lastKey_, index + 1 == count);
}

std::unique_ptr<ContextBase> buildContext(const Value& root, const ContextOptions& options,
                                          std::uint64_t limit) {
    if (root.kind() != Kind::Dictionary) {
        throw std::invalid_argument("the root of a context must be a dictionary");
    }
    context_builder builder(options, limit);
    return value_reader(builder).build(root);
}

} // namespace kel::Stencilor::internal
