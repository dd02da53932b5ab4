#ifndef TOOLS_STENCILOR_FINDING_H
#define TOOLS_STENCILOR_FINDING_H

#include <tools/stencilor/template_file.h>

#include <string>
#include <vector>

namespace stencilor {

enum class Severity { Error, Warning, Note };

/// What can be found in a template.
enum class Rule {
    Syntax,
    MissingInclude,
    UnreadableInclude,
    IncludeCycle,
    MissingName,
    WrongKind,
};

/// What is told of a rule.
struct RuleText {
    const char* id; ///< what tools know it by
    Severity severity;
    const char* description;
};

inline constexpr RuleText ruleTexts[] = {
    {"syntax", Severity::Error, "The template is rejected."},
    {"missing-include", Severity::Error, "An included file does not exist."},
    {"unreadable-include", Severity::Error, "An included file cannot be read."},
    {"include-cycle", Severity::Note, "A file includes itself, directly or through others."},
    {"missing-name", Severity::Warning, "The context has no value of this name."},
    {"wrong-kind", Severity::Warning, "The context has a value of another kind."},
};

inline const RuleText& textOf(Rule rule) {
    return ruleTexts[static_cast<std::size_t>(rule)];
}

const char* textOf(Severity severity);

/// Bytes of a template, which must outlive it.
struct Place {
    const TemplateFile* file;
    SyntaxRange range;
};

struct Note {
    Place place;
    std::string message;
};

struct Finding {
    Rule rule;
    Place place;
    std::string message;
    std::vector<Note> notes{};

    Severity severity() const { return textOf(rule).severity; }
};

/// What is wrong with the syntax of a file, which must have a fault.
Finding describeFault(const TemplateFile& file);

/// True if there is more than notes.
bool needAttention(const std::vector<Finding>& findings);

enum class FindingFormat { Text, Json, Sarif };

/// Findings as compilers print them, `PATH:LINE:COLUMN: SEVERITY: MESSAGE`, each with its line and
/// a caret below; or as one JSON document, or one of SARIF 2.1.0.
std::string format(const std::vector<Finding>& findings, FindingFormat format);

} // namespace stencilor

#endif
