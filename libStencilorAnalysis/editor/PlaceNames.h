#ifndef LIBSTENCILORANALYSIS_EDITOR_PLACENAMES_H
#define LIBSTENCILORANALYSIS_EDITOR_PLACENAMES_H

#include <libStencilor/Stencilor.h>
#include <libStencilorAnalysis/template/TemplateFile.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The names that a context provides at one position in a template.

namespace kel::Stencilor::Analysis {

/// A position in a template: an include that leads to the next position or, as the last one, the
/// position itself.
struct Site {
    const TemplateFile* file;
    std::size_t offset;
};

/// A scope in which names are looked up.
struct PlaceScope {
    const ContextBase* value;
    const TemplateFile* file = nullptr; ///< null for the context itself
    std::size_t tag = 0;                ///< the tag that opens it
    std::size_t element = 0;            ///< of a list, from 0
    std::size_t count = 0;              ///< the size of the list; 0 for a condition
    std::string path{};                 ///< the name of the value in a context: `user.items`
};

struct FoundName {
    const ContextBase* value;
    std::size_t scope;         ///< the index of its scope
    std::string_view variable; ///< the removed prefix; empty if there was none
    std::string path;          ///< its name in a context: `items.title`
};

/// A moment in a render when the position is reached.
struct Moment {
    std::vector<PlaceScope> scopes;          ///< outermost first
    std::vector<std::string_view> variables; ///< of the loops in the last file, outermost first

    /// Looks up a name by the engine's rules.
    std::optional<FoundName> find(std::string_view name) const;
};

/// The first moments: with the first elements of the innermost list, and so on. A block that
/// would be skipped because its value or elements are missing counts as entered without them.
/// Cost: bounded; only the innermost 200 blocks count.
std::vector<Moment> findMoments(const ContextBase& context, const std::vector<Site>& sites,
                                std::size_t most);

} // namespace kel::Stencilor::Analysis

#endif
