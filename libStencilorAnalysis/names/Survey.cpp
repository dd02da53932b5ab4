#include <libStencilorAnalysis/names/Survey.h>

#include <algorithm>
#include <cstdint>
#include <set>
#include <utility>

namespace kel::Stencilor::Analysis {

namespace {

using Kind = SyntaxElement::Kind;

class Survey final : private TemplateWalk {
  public:
    Survey(TemplateFiles& files, Surveyor& surveyor) : TemplateWalk(files), surveyor_(surveyor) {}

    std::vector<Finding> walk(const TemplateFile& file) {
        enter(file);
        return std::move(findings_);
    }

  private:
    void enter(const TemplateFile& file) {
        const std::size_t around = loops_.size();
        walkFile(file);
        loops_.resize(around); // a rejected file may leave some open
    }

    std::size_t visit(const TemplateFile& file, std::size_t index) override {
        const SyntaxElement& part = file.parts()[index];
        switch (part.kind) {
        case Kind::Substitution:
            visitName(file, part.name, ValueKind::String);
            break;
        case Kind::If:
            visitName(file, part.name, ValueKind::Boolean);
            break;
        case Kind::For:
            visitName(file, part.list, ValueKind::List);
            loops_.push_back({std::string(file.slice(part.name)),
                              std::string(file.slice(part.list)), inclusions()});
            break;
        case Kind::EndFor:
            loops_.pop_back();
            break;
        default:
            break;
        }
        return index + 1;
    }

    void visitInclusion(const Inclusion& inclusion) override {
        surveyor_.visitInclusion(inclusion);
        const TemplateFile* const file = inclusion.to.file;
        if (file == nullptr) {
            addOnce(describeFailure(inclusion));
        } else if (!isOnPath(*file) && isNew(*file)) {
            if (file->fault().isPresent()) {
                addOnce(describeFault(*file));
            }
            enter(*file);
        }
    }

    void visitName(const TemplateFile& file, SyntaxRange name, ValueKind kind) {
        surveyor_.visitName({file, name, kind, loops_, inclusions()});
    }

    std::size_t inclusions() const { return path().size() - 1; }

    bool isNew(const TemplateFile& file) {
        const std::pair<const TemplateFile*, std::vector<Loop>> key(&file, loops_);
        if (std::find(walked_.begin(), walked_.end(), key) != walked_.end()) {
            return false;
        }
        walked_.push_back(key);
        return true;
    }

    /// Once for each place.
    void addOnce(Finding finding) {
        if (places_.emplace(finding.place.file, finding.place.range.begin).second) {
            findings_.push_back(std::move(finding));
        }
    }

    Surveyor& surveyor_;
    std::vector<Loop> loops_;
    std::vector<std::pair<const TemplateFile*, std::vector<Loop>>> walked_;
    std::vector<Finding> findings_;
    std::set<std::pair<const TemplateFile*, std::uint32_t>> places_; // of the findings
};

} // namespace

const char* kindName(ValueKind kind) {
    switch (kind) {
    case ValueKind::String:
        return "string";
    case ValueKind::Boolean:
        return "boolean";
    case ValueKind::List:
        break;
    }
    return "list";
}

std::vector<Finding> survey(TemplateFiles& files, const TemplateFile& file, Surveyor& surveyor) {
    return Survey(files, surveyor).walk(file);
}

} // namespace kel::Stencilor::Analysis
