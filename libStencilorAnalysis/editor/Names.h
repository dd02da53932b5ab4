#ifndef LIBSTENCILORANALYSIS_EDITOR_NAMES_H
#define LIBSTENCILORANALYSIS_EDITOR_NAMES_H

#include <libStencilorAnalysis/names/Survey.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The names in the tags of one template, and the variables of loops in them. Of the loops around a
// name, only the innermost 100 count, so that the cost remains linear.

namespace kel::Stencilor::Analysis {

/// A name or path in a tag.
struct NameAt {
    enum class Role { Value, Variable, Path };

    std::size_t part; ///< the tag
    SyntaxRange range;
    Role role;
};

/// The name or path that contains an offset, or ends there.
std::optional<NameAt> findNameAt(const TemplateFile& file, std::size_t offset);

/// The innermost loop whose variable is a prefix of the name in a tag, or `TemplateFile::none`.
std::size_t findLoopOf(const TemplateFile& file, std::size_t part);

/// The variable at the beginning of such a name, without the dot, or empty.
SyntaxRange prefixOf(const TemplateFile& file, std::size_t part);

/// The loop whose variable is at an offset, either in its tag or as a prefix.
std::size_t findLoopAt(const TemplateFile& file, std::size_t offset);

/// The places of a loop variable: first in its tag, then as a prefix.
std::vector<SyntaxRange> findVariable(const TemplateFile& file, std::size_t loop);

/// The places where the same text has the same role.
std::vector<SyntaxRange> findSameNames(const TemplateFile& file, const NameAt& name);

/// The reason why a loop variable cannot be renamed without changing the meaning of names; empty if
/// there is none.
std::string whyNotRename(const TemplateFile& file, std::size_t loop, std::string_view name);

/// True if text is a valid name.
bool isName(std::string_view text);

/// True if a name begins with a variable and a dot.
bool hasPrefix(std::string_view name, std::string_view variable);

} // namespace kel::Stencilor::Analysis

#endif
