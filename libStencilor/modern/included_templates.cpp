#include <libKel/FileSystem.h>
#include <libStencilor/modern/included_templates.h>
#include <libStencilor/modern/template_of_file.h>

#include <utility>

namespace kel::Stencilor::internal {

namespace {

using Answer = TemplateSource::Answer;

/// Finds files like `buildOutput`.
Answer findFile(const String& path, std::uint64_t maxBytes, std::optional<Template>& found) {
    return templateOfFile(path, maxBytes, found, [&path](std::uint64_t most, auto& bytes) {
        return FileSystem::load(path, most, bytes);
    });
}

} // namespace

const included_template& included_templates::ask(const String& path) {
    included_template asked;
    const std::uint64_t maxBytes = limit_ == unlimited ? unlimited : left_;
    asked.answer = source_ == nullptr ? findFile(path, maxBytes, asked.found)
                                      : source_->find(path, maxBytes, asked.found);
    if (asked.answer == Answer::Found && !asked.found) {
        asked.answer = Answer::Unreadable; // the source violates its contract
    }
    if (asked.answer == Answer::Found) {
        const std::uint64_t size = asked.found->text().size();
        if (size > left_) {
            asked.answer = Answer::TooLarge;
        } else {
            left_ -= size;
        }
    }
    return known_->byPath.emplace(path, std::move(asked)).first->second;
}

} // namespace kel::Stencilor::internal
