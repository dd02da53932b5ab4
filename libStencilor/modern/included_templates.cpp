#include <libKel/Buffer.h>
#include <libKel/FileSystem.h>
#include <libStencilor/modern/included_templates.h>

#include <limits>
#include <utility>

namespace kel::Stencilor::internal {

namespace {

using Answer = TemplateSource::Answer;

constexpr std::uint64_t unlimited = std::numeric_limits<std::uint64_t>::max();

/// The files that `buildOutput` finds.
Answer findFile(const String& path, std::uint64_t maxBytes, std::optional<Template>& found) {
    if (!FileSystem::exists(path)) {
        return Answer::Missing;
    }
    Buffer<unsigned char> file;
    if (!FileSystem::loadFile(path, file, nullptr)) {
        return Answer::Unreadable;
    }
    if (file.size > maxBytes) {
        return Answer::TooLarge;
    }
    found.emplace(String(reinterpret_cast<const char*>(file.data),
                         static_cast<unsigned int>(file.size)), // no longer file is loaded
                  path);
    return Answer::Found;
}

} // namespace

const included_template& included_templates::ask(const String& path) {
    included_template asked;
    const std::uint64_t maxBytes = limit_ == unlimited ? unlimited : left_;
    asked.answer = source_ == nullptr ? findFile(path, maxBytes, asked.found)
                                      : source_->find(path, maxBytes, asked.found);
    if (asked.answer == Answer::Found && !asked.found) {
        asked.answer = Answer::Unreadable; // a source that breaks its promise
    }
    if (asked.answer == Answer::Found) {
        const std::uint64_t size = asked.found->text().size();
        if (size > left_) {
            asked.answer = Answer::TooLarge;
        } else {
            left_ -= size;
        }
    }
    return templates_.emplace(path, std::move(asked)).first->second;
}

} // namespace kel::Stencilor::internal
