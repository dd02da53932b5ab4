#include <libStencilorAnalysis/template/TemplateWalk.h>

#include <string>

namespace kel::Stencilor::Analysis {

void TemplateWalk::walkFile(const TemplateFile& file) {
    enterFile(file);
    while (!path_.empty()) {
        const TemplateFile& current = *path_.back();
        const std::size_t depth = next_.size() - 1;
        const std::size_t index = next_[depth];
        if (stopped_ || index >= current.parts().size()) {
            leave();
            continue;
        }
        const SyntaxElement& part = current.parts()[index];
        if (part.kind == SyntaxElement::Kind::Include) {
            next_[depth] = index + 1;
            visitInclusion({current, part, files_.include(std::string(current.slice(part.name)))});
        } else {
            next_[depth] = visit(current, index);
        }
    }
}

void TemplateWalk::enterFile(const TemplateFile& file) {
    ++positions_.try_emplace(&file, Occurrences{path_.size(), 0}).first->second.count;
    path_.push_back(&file);
    next_.push_back(0);
}

void TemplateWalk::leave() {
    leaveFile();
    const auto position = positions_.find(path_.back());
    if (--position->second.count == 0) {
        positions_.erase(position);
    }
    path_.pop_back();
    next_.pop_back();
}

} // namespace kel::Stencilor::Analysis
