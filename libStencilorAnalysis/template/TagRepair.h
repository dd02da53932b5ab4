#ifndef LIBSTENCILORANALYSIS_TEMPLATE_TAGREPAIR_H
#define LIBSTENCILORANALYSIS_TEMPLATE_TAGREPAIR_H

#include <libStencilor/Syntax.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kel::Stencilor::Analysis {

/// A fault in a template and the malformed tag. For an unclosed block, this is the end of the text.
struct TagFault {
    SyntaxFault fault;
    SyntaxRange tag;
};

/// Well-formed tags with which the analysis replaces a malformed one.
struct TagRepair {
    SyntaxRange tag;
    std::string text;
    std::size_t fault; ///< the index of its fault
};

/// The faults of a template, in order.
struct TemplateFaults {
    std::vector<TagFault> faults;
    std::vector<TagRepair> repairs; ///< at least one for each fault
    bool areAll = true;             ///< false if there are more than `mostFaults`
};

inline constexpr std::size_t mostFaults = 20;

/// Parses a template, and continues after a malformed tag as if it were a well-formed tag of the
/// most likely kind, so a malformed `if` still opens a block. A tag of another language and its end
/// tag count as substitutions. Unclosed blocks are a single fault, which comes last and is that of
/// the innermost one.
///
/// `parts` receives the text, the well-formed tags, and, without names, the malformed tags that
/// open or close a block.
/// Cost: linear, for each of up to `mostFaults` faults.
TemplateFaults readTemplate(std::string_view text, std::vector<SyntaxElement>& parts);

/// The first word in a tag, in lower case: `if` in `{%- IF x %}`.
std::string keywordOf(std::string_view tag);

} // namespace kel::Stencilor::Analysis

#endif
