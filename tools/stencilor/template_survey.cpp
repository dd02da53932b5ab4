#include <tools/stencilor/context_findings.h>
#include <tools/stencilor/platform.h>
#include <tools/stencilor/template_survey.h>

#include <algorithm>
#include <utility>

namespace stencilor {

namespace {

using Kind = SyntaxElement::Kind;

class Survey {
  public:
    Survey(TemplateFiles& files, Surveyor& surveyor) : files_(files), surveyor_(surveyor) {}

    void go(const TemplateFile& file) {
        active_.push_back(&file);
        const std::size_t around = loops_.size();
        for (const SyntaxElement& part : file.parts()) {
            visit(file, part);
        }
        loops_.resize(around); // blocks without an end
        active_.pop_back();
    }

    std::vector<Finding> takeFindings() { return std::move(findings_); }

  private:
    void visit(const TemplateFile& file, const SyntaxElement& part) {
        const std::size_t inclusions = active_.size() - 1;
        switch (part.kind) {
        case Kind::Substitution:
        case Kind::If:
            surveyor_.visitName({file, part, loops_, inclusions});
            break;
        case Kind::For:
            surveyor_.visitName({file, part, loops_, inclusions});
            loops_.push_back({std::string(file.textOf(part.name)),
                              std::string(file.textOf(part.list)), inclusions});
            break;
        case Kind::EndFor:
            loops_.pop_back();
            break;
        case Kind::Include:
            include(file, part);
            break;
        default:
            break;
        }
    }

    void include(const TemplateFile& file, const SyntaxElement& part) {
        const std::string path(file.textOf(part.name));
        const auto [included, exists] = files_.include(path);
        surveyor_.visitInclusion(files_.pathOf(path), included);
        if (included == nullptr) {
            const Rule rule = exists ? Rule::UnreadableInclude : Rule::MissingInclude;
            tell(describeInclusion(rule, file, part));
        } else if (std::find(active_.begin(), active_.end(), included) == active_.end() &&
                   isNew(*included)) {
            if (included->fault().isPresent()) {
                tell(describeFault(*included));
            }
            go(*included);
        }
    }

    bool isNew(const TemplateFile& file) {
        const std::pair<const TemplateFile*, std::vector<Loop>> key(&file, loops_);
        if (std::find(done_.begin(), done_.end(), key) != done_.end()) {
            return false;
        }
        done_.push_back(key);
        return true;
    }

    /// Once for each place.
    void tell(Finding finding) {
        const bool told =
            std::any_of(findings_.begin(), findings_.end(), [&finding](const Finding& other) {
                return other.place.file == finding.place.file &&
                       other.place.range.begin == finding.place.range.begin;
            });
        if (!told) {
            findings_.push_back(std::move(finding));
        }
    }

    TemplateFiles& files_;
    Surveyor& surveyor_;
    std::vector<const TemplateFile*> active_; // the outermost first
    std::vector<Loop> loops_;
    std::vector<std::pair<const TemplateFile*, std::vector<Loop>>> done_;
    std::vector<Finding> findings_;
};

} // namespace

std::vector<Finding> survey(TemplateFiles& files, const TemplateFile& file, Surveyor& surveyor) {
    Survey all(files, surveyor);
    all.go(file);
    return all.takeFindings();
}

ExitStatus printFindings(const std::vector<Finding>& findings) {
    platform::writeStandardError(format(findings, FindingFormat::Text));
    return findings.empty() ? exitClean : exitMessages;
}

} // namespace stencilor
