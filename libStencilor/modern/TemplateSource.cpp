#include <libStencilor/Template.h>
#include <libStencilor/modern/source_lock.h>

#include <map>
#include <utility>

namespace kel::Stencilor {

TemplateSource::TemplateSource() = default;
TemplateSource::TemplateSource(const TemplateSource& other) = default;
TemplateSource& TemplateSource::operator=(const TemplateSource& other) = default;
TemplateSource::~TemplateSource() = default;

struct internal::memory_templates {
    std::map<String, Template> byPath; // guarded by the lock of all sources
};

MemoryTemplates::MemoryTemplates() : templates_(std::make_unique<internal::memory_templates>()) {}
MemoryTemplates::~MemoryTemplates() = default;

void MemoryTemplates::add(String path, String text) {
    Template added(std::move(text), path);
    const internal::source_change lock;
    templates_->byPath.insert_or_assign(std::move(path), std::move(added));
}

TemplateSource::Answer MemoryTemplates::find(const String& path, std::uint64_t maxBytes,
                                             std::optional<Template>& found) {
    const internal::source_reading lock;
    const auto entry = templates_->byPath.find(path);
    if (entry == templates_->byPath.end()) {
        return Answer::Missing;
    }
    if (entry->second.text().size() > maxBytes) {
        return Answer::TooLarge;
    }
    found = entry->second;
    return Answer::Found;
}

} // namespace kel::Stencilor
