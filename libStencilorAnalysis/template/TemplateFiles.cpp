#include <libStencilorAnalysis/template/TemplateFiles.h>

#include <utility>

namespace kel::Stencilor::Analysis {

const TemplateFile& TemplateFiles::add(TemplateText text) {
    const TemplateFile*& known = known_[text.identity];
    if (known == nullptr) {
        files_.push_back(text.file ? std::move(text.file)
                                   : std::make_shared<const TemplateFile>(std::move(text.name),
                                                                          std::move(text.text)));
        known = files_.back().get();
    }
    return *known;
}

const TemplateFiles::Included& TemplateFiles::include(const std::string& path) {
    const auto found = included_.find(path);
    return found != included_.end() ? found->second
                                    : included_.emplace(path, read(path)).first->second;
}

TemplateFiles::Included TemplateFiles::read(const std::string& path) {
    TemplateText text;
    const TemplateReader::Answer answer = reader_.find(path, text);
    const std::string name = text.name;
    const bool found = answer == TemplateReader::Answer::Found;
    return {answer, name, found ? &add(std::move(text)) : nullptr};
}

} // namespace kel::Stencilor::Analysis
