#ifndef TESTS_SUPPORT_CONTEXT_H
#define TESTS_SUPPORT_CONTEXT_H

#include <libKel/String.h>
#include <libStencilor/Stencilor.h>

#include <map>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

// Short names for building contexts and rendering with them.

namespace support {

using kel::Stencilor::ContextBase;
using kel::Stencilor::ContextBoolean;
using kel::Stencilor::ContextDictionary;
using kel::Stencilor::ContextFactory;
using kel::Stencilor::ContextIterable;
using kel::Stencilor::ContextString;

using Entries = std::map<kel::String, ContextBase*>;
using Elements = std::vector<ContextBase*>;

inline ContextString* text(const kel::String& value) {
    return ContextFactory::buildString(value);
}

inline ContextBoolean* truth(bool value, const Entries& children = {}) {
    return ContextFactory::buildBoolean(value, children);
}

inline ContextDictionary* dictionary(const Entries& children = {}) {
    return ContextFactory::buildDictionary(children);
}

inline ContextIterable* list(const Elements& elements = {}) {
    return ContextFactory::buildIterable(elements);
}

/// A list of this many values without names.
inline ContextIterable* listOf(std::size_t count) {
    return list(Elements(count, nullptr));
}

/// The root of a context.
class Root : public ContextDictionary {
  public:
    Root() = default;
    explicit Root(const Entries& entries) {
        for (const auto& [key, value] : entries) {
            insert(key, value);
        }
    }
    Root(const Root&) = delete;
    Root& operator=(const Root&) = delete;
};

/// The result of one rendering.
struct Rendered {
    std::string output;
    std::string errors;

    bool operator==(const Rendered&) const = default;
};

inline std::ostream& operator<<(std::ostream& stream, const Rendered& rendered) {
    return stream << "output [" << rendered.output << "] errors [" << rendered.errors << "]";
}

inline Rendered render(const kel::String& input, const ContextBase& context) {
    kel::String errors;
    std::string output = kel::Stencilor::buildOutput(input, context, errors).str();
    return {std::move(output), errors.str()};
}

/// The text of a value, which is only accessible by rendering.
inline std::string textOf(ContextString& value) {
    ContextBase root;
    root.insert("value", &value);
    std::string text = render("{{ value }}", root).output;
    root["value"] = nullptr; // the root must not delete it
    return text;
}

/// True if a conditional block considers the value true.
inline bool truthOf(ContextBoolean& value) {
    ContextBase root;
    root.insert("value", &value);
    const std::string text = render("{% if value %}true{% else %}false{% endif %}", root).output;
    root["value"] = nullptr;
    return text == "true";
}

} // namespace support

#endif
