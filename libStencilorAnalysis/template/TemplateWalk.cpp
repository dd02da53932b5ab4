#include <libStencilorAnalysis/template/TemplateWalk.h>

#include <algorithm>
#include <string>

namespace kel::Stencilor::Analysis {

void TemplateWalk::walkFile(const TemplateFile& file) {
    path_.push_back(&file);
    const std::vector<SyntaxElement>& parts = file.parts();
    for (std::size_t index = 0; index < parts.size() && !stopped_;) {
        const SyntaxElement& part = parts[index];
        if (part.kind == SyntaxElement::Kind::Include) {
            visitInclusion({file, part, files_.include(std::string(file.slice(part.name)))});
            ++index;
        } else {
            index = visit(file, index);
        }
    }
    path_.pop_back();
}

bool TemplateWalk::isOnPath(const TemplateFile& file) const {
    return std::find(path_.begin(), path_.end(), &file) != path_.end();
}

} // namespace kel::Stencilor::Analysis
