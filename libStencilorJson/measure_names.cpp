#include <libStencilorJson/measure_names.h>

#include <algorithm>

namespace kel::Stencilor::internal {

namespace {

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

const JsonValue* findBooleanMember(const JsonValue& object) {
    const auto found = std::find(object.names.begin(), object.names.end(), jsonBooleanMember);
    return found == object.names.end()
               ? nullptr
               : &object.items[static_cast<std::size_t>(found - object.names.begin())];
}

std::uint64_t measureDottedNames(const JsonValue& root) {
    Names names;
    std::uint64_t dotted = 0;
    measureCopy(root, names, dotted);
    return dotted;
}

} // namespace kel::Stencilor::internal
