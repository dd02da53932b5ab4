#include <libStencilorAnalysis/check/TemplateCheck.h>
#include <libStencilorAnalysis/check/UnusedNames.h>
#include <libStencilorAnalysis/text/ShownText.h>
#include <tools/stencilor/commands/Check.h>
#include <tools/stencilor/commands/ContextPlaces.h>
#include <tools/stencilor/commands/Messages.h>
#include <tools/stencilor/commands/NamedTemplates.h>
#include <tools/stencilor/commands/ProjectSettings.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

namespace stencilor {

using namespace kel::Stencilor::Analysis;
using kel::Stencilor::SyntaxRange;

namespace {

void checkTemplate(NamedTemplates& templates, ProjectSettings& projects, const std::string& file,
                   CheckReport& report, UnusedNames& unused) {
    const NamedTemplates::Named named = templates.open(file, projects.rootOf(file));
    survey(named.files, named.file, unused);
    const auto* const context =
        templates.context() != nullptr ? templates.context() : projects.contextOf(file);
    kel::Stencilor::Analysis::checkTemplate(named.files, named.file, context, report);
}

std::string joinLines(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += (text.empty() ? "" : "\n") + line;
    }
    return text;
}

/// The sources of a context, for findings about it.
class ContextTexts {
  public:
    ContextTexts(const ContextRequest& request, std::string json)
        : request_(request), file_(request.file ? inputName(*request.file) : "-D", std::move(json)),
          definitions_("-D", joinLines(request.definitions)) {}

    /// Returns nothing for names added by `--positions`.
    std::vector<std::optional<Place>> findPlaces(const std::vector<std::string>& names) const {
        std::vector<std::optional<SyntaxRange>> ranges(names.size());
        if (request_.file) {
            ranges = findNames(file_.text(), names);
        }
        std::vector<std::optional<Place>> places(names.size());
        for (std::size_t i = 0; i < names.size(); ++i) {
            const auto defined = findDefinition(names[i]);
            if (defined) {
                places[i] = {&definitions_, *defined};
            } else if (ranges[i] || !request_.positions) {
                places[i] = {&file_, ranges[i].value_or(SyntaxRange())};
            }
        }
        return places;
    }

  private:
    /// The last definition of a name wins.
    std::optional<SyntaxRange> findDefinition(const std::string& name) const {
        std::optional<SyntaxRange> found;
        std::size_t begin = 0;
        for (const std::string& definition : request_.definitions) {
            std::string_view defined = std::string_view(definition).substr(0, definition.find('='));
            defined.remove_suffix(defined.ends_with(':') ? 1 : 0);
            if (name.starts_with(defined) &&
                (name.size() == defined.size() || name[defined.size()] == '.')) {
                found = SyntaxRange{static_cast<unsigned int>(begin),
                                    static_cast<unsigned int>(begin + defined.size())};
            }
            begin += definition.size() + 1;
        }
        return found;
    }

    const ContextRequest& request_;
    TemplateFile file_;
    TemplateFile definitions_;
};

/// Adds findings for names that no template uses.
void describeUnused(const std::vector<std::string>& names, const ContextTexts& texts,
                    std::vector<Finding>& findings) {
    const auto places = texts.findPlaces(names);
    std::vector<Finding> unused;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (places[i]) {
            unused.push_back({.rule = Rule::UnusedName,
                              .place = *places[i],
                              .message = "no template uses " + quote(names[i])});
        }
    }
    std::stable_sort(unused.begin(), unused.end(), [](const Finding& one, const Finding& other) {
        return one.place.range.begin < other.place.range.begin;
    });
    std::move(unused.begin(), unused.end(), std::back_inserter(findings));
}

} // namespace

ExitStatus check(const CheckRequest& request) {
    Files files;
    std::string contextText;
    NamedTemplates templates(request, files, request.unused ? &contextText : nullptr);
    ProjectSettings projects(request, files);
    CheckReport report;
    UnusedNames unused;
    bool failed = false;
    for (const std::string& file : request.templateFiles) {
        try {
            checkTemplate(templates, projects, file, report, unused);
        } catch (const Failure& failure) {
            printError(failure.what());
            failed = true;
        }
    }
    std::vector<Finding> findings = sortFindings(std::move(report));
    const ContextTexts texts(request.context, std::move(contextText));
    if (request.unused && !failed) {
        describeUnused(unused.find(*templates.context()), texts, findings);
    }
    const bool isShown = request.outputFile == standardStream;
    if (!isShown || !request.quiet) {
        Request shown = request;
        shown.color = isShown ? request.color : Color::Never;
        files.write(request.outputFile, formatFindings(findings, shown, false));
    }
    return failed ? exitFailure : needAttention(findings) ? exitMessages : exitClean;
}

} // namespace stencilor
