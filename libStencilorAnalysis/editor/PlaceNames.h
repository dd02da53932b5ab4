#ifndef LIBSTENCILORANALYSIS_EDITOR_PLACENAMES_H
#define LIBSTENCILORANALYSIS_EDITOR_PLACENAMES_H

#include <libStencilor/Stencilor.h>
#include <libStencilorAnalysis/template/TemplateFile.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Which names a context has at one place of a template.

namespace kel::Stencilor::Analysis {

/// A place in a template: an inclusion that leads to the next one, or, as the last of several, the
/// place itself.
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
    std::size_t count = 0;              ///< how many elements the list has; 0 for a condition
    std::string path{};                 ///< how a context names the value: `user.items`
};

struct FoundName {
    const ContextBase* value;
    std::size_t scope;         ///< the index of the one that has it
    std::string_view variable; ///< that was taken off; empty if none was
    std::string path;          ///< how a context names it: `items.title`
};

/// One moment of a render at which the place is reached.
struct Moment {
    std::vector<PlaceScope> scopes;          ///< the outermost first
    std::vector<std::string_view> variables; ///< of the loops in the last file, the outermost first

    /// By the engine's rules.
    std::optional<FoundName> find(std::string_view name) const;
};

/// The first moments: with the first elements of the innermost list, and so on. Blocks that are not
/// entered, for want of a value or of elements, are taken for entered without one.
/// Cost: bounded; of blocks nested deeper than 200 the innermost count.
std::vector<Moment> findMoments(const ContextBase& context, const std::vector<Site>& sites,
                                std::size_t most);

} // namespace kel::Stencilor::Analysis

#endif
