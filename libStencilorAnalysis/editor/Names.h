#ifndef LIBSTENCILORANALYSIS_EDITOR_NAMES_H
#define LIBSTENCILORANALYSIS_EDITOR_NAMES_H

#include <libStencilorAnalysis/names/Survey.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The names in the tags of one template, and the variables of loops in them.

namespace kel::Stencilor::Analysis {

/// A name or path in a tag.
struct NameAt {
    enum class Role { Value, Variable, Path };

    std::size_t part; ///< the tag
    SyntaxRange range;
    Role role;
};

/// The one that an offset is in, or at the end of.
std::optional<NameAt> findNameAt(const TemplateFile& file, std::size_t offset);

/// The loop whose variable the name that a tag asks the context for begins with, the innermost of
/// several; `TemplateFile::none` if there is none.
std::size_t findLoopOf(const TemplateFile& file, std::size_t part);

/// The variable that such a name begins with, without the dot; empty if there is none.
SyntaxRange prefixOf(const TemplateFile& file, std::size_t part);

/// The loop whose variable is at an offset, where it is bound or as a prefix.
std::size_t findLoopAt(const TemplateFile& file, std::size_t offset);

/// Where the variable of a loop is: first where it is bound, then where it is a prefix.
std::vector<SyntaxRange> findVariable(const TemplateFile& file, std::size_t loop);

/// Where the same text is a name of the same role.
std::vector<SyntaxRange> findSameNames(const TemplateFile& file, const NameAt& name);

/// Why the variable of a loop cannot have another name without changing what names mean; empty if
/// it can.
std::string whyNotRename(const TemplateFile& file, std::size_t loop, std::string_view name);

/// Whether the language takes a text for a name.
bool isName(std::string_view text);

/// Whether a name begins with a variable and a dot.
bool hasPrefix(std::string_view name, std::string_view variable);

} // namespace kel::Stencilor::Analysis

#endif
