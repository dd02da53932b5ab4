#include <libStencilorAnalysis/check/TextCheck.h>
#include <tools/stencilor/commands/RenderedTemplates.h>

#include <algorithm>
#include <utility>

namespace stencilor {

using namespace kel::Stencilor::Analysis;
using kel::Stencilor::Template;
using kel::Stencilor::TemplateSource;

TemplateText RenderedTemplates::Known::text() const {
    return {name, identity, std::string(found->text().view())};
}

RenderedTemplates::RenderedTemplates(const Request& request, Files& files)
    : root_(open(readTemplate(request.templateFiles.front(), request, files))),
      folder_(includeRoot(request.templateFiles.front(), request), files) {}

RenderedTemplates::Known RenderedTemplates::open(const TemplateText& text) {
    return {kel::Folder::Answer::Found, text.name, text.identity, Template(text.text, text.name)};
}

TemplateSource::Answer RenderedTemplates::find(const kel::String& path, std::uint64_t maxBytes,
                                               std::optional<Template>& found) {
    TemplateText text;
    Known& known = known_[path.str()];
    known.answer = folder_.load(path.str(), std::min(maxBytes, system::longestText), text);
    known.name = text.name;
    switch (known.answer) {
    case kel::Folder::Answer::Missing:
        return Answer::Missing;
    case kel::Folder::Answer::Unreadable:
        return Answer::Unreadable;
    case kel::Folder::Answer::TooLarge:
        // Without a limit, this is more than any template can be.
        return maxBytes > system::longestText ? Answer::Unreadable : Answer::TooLarge;
    case kel::Folder::Answer::Found:
        break;
    }
    known = open(text);
    if (known.identity == root_.identity) {
        // A template from the standard input replaces the file that it belongs to.
        known.found = Template(root_.found->text(), text.name);
    }
    found = known.found;
    return Answer::Found;
}

const TemplateFile& RenderedTemplates::rootFile() {
    return files_.add(root_.text());
}

const TemplateFile& RenderedTemplates::fileNamed(const kel::String& name) {
    const TemplateFile*& named = named_[name.str()];
    if (named == nullptr) {
        const auto found = std::find_if(known_.begin(), known_.end(), [&name](const auto& known) {
            return known.second.found && known.second.name == name.str();
        });
        named = &files_.add(found == known_.end() ? root_.text() : found->second.text());
    }
    return *named;
}

std::vector<const TemplateFile*> RenderedTemplates::damagedFiles() {
    std::vector<const TemplateFile*> damaged;
    if (isDamaged(root().text().view())) {
        damaged.push_back(&rootFile());
    }
    for (const auto& [path, known] : known_) {
        if (known.found && isDamaged(known.found->text().view())) {
            damaged.push_back(&fileNamed(known.found->name()));
        }
    }
    return damaged;
}

TemplateReader::Answer RenderedTemplates::Reader::find(const std::string& path,
                                                       TemplateText& found) {
    const auto known = templates_.known_.find(path);
    if (known == templates_.known_.end() || known->second.answer == kel::Folder::Answer::Missing) {
        found.name = path;
        return Answer::Missing;
    }
    found.name = known->second.name;
    if (!known->second.found) {
        return Answer::Unreadable;
    }
    found = known->second.text();
    return Answer::Found;
}

} // namespace stencilor
