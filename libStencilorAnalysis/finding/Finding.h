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

/// What can be found in a template.
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
    const char* id; ///< what tools know it by
    Severity severity;
    const char* description;
};

/// In the order of `Rule`.
inline constexpr RuleInfo rules[] = {
    {"syntax", Severity::Error, "The template is rejected."},
    {"missing-include", Severity::Error, "An included file does not exist."},
    {"unreadable-include", Severity::Error, "An included file cannot be read."},
    {"include-cycle", Severity::Note, "A file includes itself, directly or through others."},
    {"endless-include", Severity::Error, "A file always includes itself."},
    {"missing-name", Severity::Warning, "The context has no value of this name."},
    {"wrong-kind", Severity::Warning, "The context has a value of another kind."},
    {"other-loop", Severity::Warning, "A name is found in the element of another loop."},
    {"limit", Severity::Error, "Rendering reached a limit."},
    {"habit", Severity::Note, "A tag or a text means something else in other template languages."},
    {"damaged-text", Severity::Warning, "The bytes of a template are not as they should be."},
    {"unused-name", Severity::Warning, "No template uses this name of the context."},
    {"empty-line", Severity::Note, "Tags alone on a line leave an empty line in the output."},
};

inline const RuleInfo& infoOf(Rule rule) {
    return rules[static_cast<std::size_t>(rule)];
}

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
    std::optional<Severity> ownSeverity{}; ///< in place of the rule's

    Severity severity() const { return ownSeverity.value_or(infoOf(rule).severity); }
};

/// What is wrong with the syntax of a file, which must have a fault: what the engine lacks first.
Finding describeFault(const TemplateFile& file);

/// Adds all that is wrong with the syntax of a file.
void describeFaults(const TemplateFile& file, std::vector<Finding>& findings);

/// Why an inclusion has no file, which must be missing or unreadable.
Finding describeFailure(const Inclusion& inclusion);

/// True if there is more than notes.
bool needAttention(const std::vector<Finding>& findings);

} // namespace kel::Stencilor::Analysis

#endif
