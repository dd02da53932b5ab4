#include <libStencilorAnalysis/names/Survey.h>

#include <utility>

namespace kel::Stencilor::Analysis {

namespace {

using Kind = SyntaxElement::Kind;

class Survey final : private TemplateWalk {
  public:
    Survey(TemplateFiles& files, Surveyor& surveyor) : TemplateWalk(files), surveyor_(surveyor) {}

    std::vector<Finding> walk(const TemplateFile& file) {
        if (surveyor_.enter(file)) {
            walkFile(file);
        }
        return std::move(findings_);
    }

  private:
    std::size_t visit(const TemplateFile& file, std::size_t index) override {
        const NameUse use = nameOf(file, index);
        if (!use.name.isEmpty()) {
            surveyor_.visitName(use);
        }
        return index + 1;
    }

    void visitInclusion(const Inclusion& inclusion) override {
        surveyor_.visitInclusion(inclusion);
        const TemplateFile* const file = inclusion.to.file;
        if (file == nullptr) {
            findings_.push_back(describeFailure(inclusion));
        } else if (surveyor_.enter(*file)) {
            if (file->fault().isPresent()) {
                describeFaults(*file, findings_);
            }
            enterFile(*file);
        }
    }

    Surveyor& surveyor_;
    std::vector<Finding> findings_;
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

NameUse nameOf(const TemplateFile& file, std::size_t part) {
    const SyntaxElement& tag = file.parts()[part];
    switch (tag.kind) {
    case Kind::Substitution:
        return {file, part, tag.name, ValueKind::String};
    case Kind::If:
        return {file, part, tag.name, ValueKind::Boolean};
    case Kind::For:
        return {file, part, tag.list, ValueKind::List};
    default:
        return {file, part, {}, ValueKind::String};
    }
}

std::vector<Finding> survey(TemplateFiles& files, const TemplateFile& file, Surveyor& surveyor) {
    surveyor.visitTemplate(files, file);
    return Survey(files, surveyor).walk(file);
}

} // namespace kel::Stencilor::Analysis
