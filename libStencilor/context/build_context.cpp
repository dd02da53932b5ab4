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

// The approximate size of an entry without its texts: a map node and a value.
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

/// Makes the value for a dotted name of `original`. A dictionary stays empty, because no template
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

/// Builds values from the inside out, so that the names of nested dictionaries are complete when
/// those of the outer one are made.
class context_builder {
  public:
    context_builder(const ContextOptions& options, std::uint64_t limit)
        : options_(options), limit_(limit) {}

    std::unique_ptr<ContextBase> build(const Value& value);

  private:
    std::unique_ptr<ContextBase> buildDictionary(const Members& members);
    std::unique_ptr<ContextBase> buildList(const std::vector<Value>& items);
    std::unique_ptr<ContextBase> buildElement(const Value& item);
    void addDottedNames(ContextBase& dictionary, const String& key, const ContextBase& nested);
    void addPosition(ContextBase& element, std::size_t index, std::size_t count) const;
    void countDottedName(const String& name, const ContextBase* original);

    const ContextOptions options_;
    const std::uint64_t limit_; // for the dotted names, in bytes
    const String booleanKey_ = "$boolean";
    const String valueKey_ = "value";
    const String indexKey_ = "index";
    const String firstKey_ = "first";
    const String lastKey_ = "last";
    std::uint64_t dottedNames_ = 0; // their memory in bytes
};

std::unique_ptr<ContextBase> context_builder::build(const Value& value) {
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

/// Makes the context value of a dictionary, without its members.
std::unique_ptr<ContextBase> buildEmptyDictionary(const Value* truth) {
    if (truth == nullptr) {
        return std::make_unique<ContextDictionary>();
    }
    if (truth->kind() != Kind::Boolean) {
        throw std::invalid_argument("the value of \"$boolean\" is neither true nor false");
    }
    return std::make_unique<ContextBoolean>(truth->isTrue());
}

std::unique_ptr<ContextBase> context_builder::buildDictionary(const Members& members) {
    const auto truth = members.find(booleanKey_);
    std::unique_ptr<ContextBase> result =
        buildEmptyDictionary(truth == members.end() ? nullptr : &truth->second);
    for (auto member = members.begin(); member != members.end(); ++member) {
        if (member != truth) {
            ContextBase*& entry = (*result)[member->first];
            entry = build(member->second).release();
        }
    }
    // Backwards, because the longest key wins: if two keys lead to the same dotted name, one is a
    // prefix of the other and precedes it.
    for (auto member = members.rbegin(); member != members.rend(); ++member) {
        if (member->second.kind() == Kind::Dictionary) {
            addDottedNames(*result, member->first, *result->find(member->first));
        }
    }
    return result;
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

std::unique_ptr<ContextBase> context_builder::buildList(const std::vector<Value>& items) {
    auto result = std::make_unique<ContextIterable>();
    std::vector<ContextBase*>& elements = context_access::elements(*result);
    elements.reserve(items.size());
    for (const Value& item : items) {
        std::unique_ptr<ContextBase> element = buildElement(item);
        if (options_.positions) {
            addPosition(*element, elements.size(), items.size());
        }
        elements.push_back(element.release());
    }
    return result;
}

std::unique_ptr<ContextBase> context_builder::buildElement(const Value& item) {
    if (item.kind() == Kind::Dictionary) {
        return build(item);
    }
    if (item.kind() == Kind::Null && !options_.positions) {
        return nullptr;
    }
    auto element = std::make_unique<ContextDictionary>();
    if (item.kind() != Kind::Null) {
        ContextBase*& value = (*element)[valueKey_];
        value = build(item).release();
    }
    return element;
}

/// Adds a child to `element`, unless it has an entry with that name.
template <typename Child, typename Source>
void addMissing(ContextBase& element, const String& key, const Source& source) {
    if (!element.containsKey(key)) {
        ContextBase*& child = element[key];
        child = new Child(source);
    }
}

void context_builder::addPosition(ContextBase& element, std::size_t index,
                                  std::size_t count) const {
    addMissing<ContextString>(element, indexKey_, numberText(std::uint64_t{index} + 1));
    addMissing<ContextBoolean>(element, firstKey_, index == 0);
    addMissing<ContextBoolean>(element, lastKey_, index + 1 == count);
}

} // namespace

std::unique_ptr<ContextBase> buildContext(const Value& root, const ContextOptions& options,
                                          std::uint64_t limit) {
    if (root.kind() != Kind::Dictionary) {
        throw std::invalid_argument("the root of a context must be a dictionary");
    }
    return context_builder(options, limit).build(root);
}

} // namespace kel::Stencilor::internal
