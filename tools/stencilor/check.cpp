#include <tools/stencilor/check.h>
#include <tools/stencilor/context_findings.h>
#include <tools/stencilor/files.h>
#include <tools/stencilor/template_files.h>

#include <algorithm>
#include <map>
#include <optional>
#include <tuple>

namespace stencilor {

namespace {

/// What is wrong with files and what they include, the context aside.
class SyntaxCheck {
  public:
    SyntaxCheck(TemplateFiles& files, std::vector<Finding>& findings)
        : files_(files), findings_(findings) {}

    void check(const TemplateFile& file) {
        if (std::find(checked_.begin(), checked_.end(), &file) != checked_.end()) {
            return;
        }
        checked_.push_back(&file);
        active_.push_back(&file);
        for (const SyntaxElement& part : file.parts()) {
            if (part.kind == SyntaxElement::Kind::Include) {
                checkInclusion(file, part);
            }
        }
        if (file.fault().isPresent()) {
            findings_.push_back(describeFault(file));
        }
        active_.pop_back();
    }

    /// The files in the order in which they were come to.
    const std::vector<const TemplateFile*>& checked() const { return checked_; }

  private:
    void checkInclusion(const TemplateFile& file, const SyntaxElement& part) {
        const auto [included, exists] = files_.include(std::string(file.textOf(part.name)));
        if (included == nullptr) {
            const Rule rule = exists ? Rule::UnreadableInclude : Rule::MissingInclude;
            findings_.push_back(describeInclusion(rule, file, part));
            return;
        }
        const auto cycle = std::find(active_.begin(), active_.end(), included);
        if (cycle != active_.end()) {
            std::string way;
            for (auto member = cycle; member != active_.end(); ++member) {
                way += (*member)->name() + " -> ";
            }
            findings_.push_back({.rule = Rule::IncludeCycle,
                                 .place = {&file, part.name},
                                 .message = "the file includes itself: " + way + included->name()});
            return;
        }
        check(*included);
    }

    TemplateFiles& files_;
    std::vector<Finding>& findings_;
    std::vector<const TemplateFile*> checked_;
    std::vector<const TemplateFile*> active_; // the outermost first
};

/// Sorted by files and places. Each once, though a file may have been read for several roots.
void sort(std::vector<Finding>& findings, const std::vector<const TemplateFile*>& files) {
    std::map<std::string, std::size_t> order;
    for (const TemplateFile* file : files) {
        order.emplace(file->name(), order.size());
    }
    const auto keyOf = [&order](const Finding& finding) {
        return std::tuple(order.at(finding.place.file->name()), finding.place.range.begin,
                          finding.rule);
    };
    std::stable_sort(
        findings.begin(), findings.end(),
        [&keyOf](const auto& one, const auto& other) { return keyOf(one) < keyOf(other); });
    const auto same = [&keyOf](const auto& one, const auto& other) {
        return keyOf(one) == keyOf(other);
    };
    findings.erase(std::unique(findings.begin(), findings.end(), same), findings.end());
}

} // namespace

ExitStatus check(const CheckOptions& options) {
    const auto context =
        options.context.isGiven() ? std::optional(makeContext(options.context)) : std::nullopt;
    TemplateFiles files;
    std::vector<Finding> findings;
    SyntaxCheck syntax(files, findings);
    bool failed = false;
    for (const std::string& name : options.templateFiles) {
        try {
            const TemplateFile& file = files.open(name, options.root);
            syntax.check(file);
            if (context && !file.fault().isPresent()) {
                const auto faults =
                    findContextFaults(files, file, *context, ContextWalk::Extent::Whole);
                findings.insert(findings.end(), faults.begin(), faults.end());
            }
        } catch (const Failure& failure) {
            printError(failure.what());
            failed = true;
        }
    }
    sort(findings, syntax.checked());
    writeOutput(options.outputFile, format(findings, options.format));
    return failed ? exitFailure : needAttention(findings) ? exitMessages : exitClean;
}

} // namespace stencilor
