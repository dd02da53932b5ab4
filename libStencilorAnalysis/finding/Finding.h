#ifndef LIBSTENCILORANALYSIS_FINDING_FINDING_H
#define LIBSTENCILORANALYSIS_FINDING_FINDING_H

#include <libStencilorAnalysis/template/TemplateWalk.h>

#include <optional>
#include <string>
#include <vector>

namespace kel::Stencilor::Analysis {

enum class Severity { Error, Warning, Note };

/// `error`, `warning` or `note`.
const char* severityName(Severity severity);

/// The kinds of findings.
enum class Rule {
    Syntax,
    MissingInclude,
    UnreadableInclude,
    IncludeCycle,
    EndlessInclude,
    MissingName,
    WrongKind,
    OtherLoop,
    Limit,
    Habit,
    DamagedText,
    UnusedName,
    EmptyLine,
};

struct RuleInfo {
    const char* id; ///< its name in JSON and SARIF
    Severity severity;
    const char* description;
};

/// In the order of `Rule`.
inline constexpr RuleInfo rules[] = {
    {"syntax", Severity::Error, "The template is rejected."},
    {"missing-include", Severity::Error, "An included file does not exist."},
    {"unreadable-include", Severity::Error, "An included file cannot be read."},
    {"include-cycle", Severity::Note, "A file includes itself, directly or through others."},
    {"endless-include", Severity::Error, "A file includes itself unconditionally."},
    {"missing-name", Severity::Warning, "The context has no value with this name."},
    {"wrong-kind", Severity::Warning, "The context has a value of another kind."},
    {"other-loop", Severity::Warning, "A name is found in the element of another loop."},
    {"limit", Severity::Error, "Rendering reached a limit."},
    {"habit", Severity::Note, "A tag or a text means something else in other template languages."},
    {"damaged-text", Severity::Warning, "A template contains damaged text."},
    {"unused-name", Severity::Warning, "No template uses this name of the context."},
    {"empty-line", Severity::Note, "Tags alone on a line leave an empty line in the output."},
};

inline const RuleInfo& infoOf(Rule rule) {
    return rules[static_cast<std::size_t>(rule)];
}

/// A range of a template, which must outlive it.
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
    std::optional<Severity> ownSeverity{}; ///< overrides the severity of the rule
    std::string replacement{};             ///< a likely fix for the text there; empty if none

    Severity severity() const { return ownSeverity.value_or(infoOf(rule).severity); }
};

/// The first syntax fault of a file, which must have one.
Finding describeFault(const TemplateFile& file);

/// Adds all syntax faults of a file.
void describeFaults(const TemplateFile& file, std::vector<Finding>& findings);

/// The finding for an include whose file is missing or unreadable.
Finding describeFailure(const Inclusion& inclusion);

/// True if any finding is an error or a warning.
bool needAttention(const std::vector<Finding>& findings);

} // namespace kel::Stencilor::Analysis

#endif
