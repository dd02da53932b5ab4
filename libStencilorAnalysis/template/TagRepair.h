#ifndef LIBSTENCILORANALYSIS_TEMPLATE_TAGREPAIR_H
#define LIBSTENCILORANALYSIS_TEMPLATE_TAGREPAIR_H

#include <libStencilor/Syntax.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kel::Stencilor::Analysis {

/// A fault in a template, and the tag at fault; of a block that is not closed, the end of the text.
struct TagFault {
    SyntaxFault fault;
    SyntaxRange tag;
};

/// Well-formed tags that the analysis goes on with in place of one that is not.
struct TagRepair {
    SyntaxRange tag;
    std::string text;
    std::size_t fault; ///< the index of the fault that it belongs to
};

/// What is wrong with a template, in its order.
struct TemplateFaults {
    std::vector<TagFault> faults;
    std::vector<TagRepair> repairs; ///< at least one for each fault; all faults without them
    bool areAll = true;             ///< false if there are more than `mostFaults`
};

inline constexpr std::size_t mostFaults = 20;

/// Reads a template, and goes on after a tag at fault as if it were a well-formed one of the kind
/// that it is taken for: so a malformed `if` still opens a block. A tag that another language knows
/// is taken for a substitution, and with it the tag that ends it. A block that is not closed is the
/// last fault, the innermost one for all.
///
/// `parts` receives the texts and tags that are not at fault, and of those at fault the ones that
/// open or close a block, without their names.
/// Cost: linear, up to `mostFaults` times.
TemplateFaults readTemplate(std::string_view text, std::vector<SyntaxElement>& parts);

/// The first word inside a tag in small letters, without what precedes it: `if` of `{%- IF x %}`.
std::string keywordOf(std::string_view tag);

} // namespace kel::Stencilor::Analysis

#endif
