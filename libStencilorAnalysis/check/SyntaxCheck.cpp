#include <libStencilorAnalysis/check/SyntaxCheck.h>

#include <algorithm>
#include <map>
#include <string>
#include <tuple>
#include <utility>

namespace kel::Stencilor::Analysis {

namespace {

class SyntaxCheck final : private TemplateWalk {
  public:
    SyntaxCheck(TemplateFiles& files, CheckReport& report) : TemplateWalk(files), report_(report) {}

    void check(const TemplateFile& file) {
        const auto& checked = report_.files;
        if (std::find(checked.begin(), checked.end(), &file) != checked.end()) {
            return;
        }
        report_.files.push_back(&file);
        walkFile(file);
        if (file.fault().isPresent()) {
            report_.findings.push_back(describeFault(file));
        }
    }

  private:
    std::size_t visit(const TemplateFile&, std::size_t index) override { return index + 1; }

    void visitInclusion(const Inclusion& inclusion) override {
        const TemplateFile* const file = inclusion.to.file;
        if (file == nullptr) {
            report_.findings.push_back(describeFailure(inclusion));
        } else if (isOnPath(*file)) {
            report_.findings.push_back(describeCycle(inclusion));
        } else {
            check(*file);
        }
    }

    Finding describeCycle(const Inclusion& inclusion) const {
        std::string way;
        for (auto member = std::find(path().begin(), path().end(), inclusion.to.file);
             member != path().end(); ++member) {
            way += (*member)->name() + " -> ";
        }
        return {.rule = Rule::IncludeCycle,
                .place = {&inclusion.from, inclusion.part.name},
                .message = "the file includes itself: " + way + inclusion.to.file->name()};
    }

    CheckReport& report_;
};

} // namespace

void checkSyntax(TemplateFiles& files, const TemplateFile& file, CheckReport& report) {
    SyntaxCheck(files, report).check(file);
}

std::vector<Finding> sortFindings(CheckReport report) {
    std::map<std::string, std::size_t> order;
    for (const TemplateFile* file : report.files) {
        order.emplace(file->name(), order.size());
    }
    const auto keyOf = [&order](const Finding& finding) {
        return std::tuple(order.at(finding.place.file->name()), finding.place.range.begin,
                          finding.rule);
    };
    std::vector<Finding>& findings = report.findings;
    std::stable_sort(
        findings.begin(), findings.end(),
        [&keyOf](const auto& one, const auto& other) { return keyOf(one) < keyOf(other); });
    const auto same = [&keyOf](const auto& one, const auto& other) {
        return keyOf(one) == keyOf(other);
    };
    findings.erase(std::unique(findings.begin(), findings.end(), same), findings.end());
    return std::move(report.findings);
}

} // namespace kel::Stencilor::Analysis
