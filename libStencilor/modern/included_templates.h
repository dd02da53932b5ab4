#ifndef LIBSTENCILOR_MODERN_INCLUDED_TEMPLATES_H
#define LIBSTENCILOR_MODERN_INCLUDED_TEMPLATES_H

#include <libStencilor/Template.h>

#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <unordered_map>

namespace kel::Stencilor::internal {

struct name_use;

/// The limit of a render that has none.
inline constexpr std::uint64_t unlimited = std::numeric_limits<std::uint64_t>::max();

/// The answer of a source.
struct included_template {
    TemplateSource::Answer answer = TemplateSource::Answer::Missing;
    std::optional<Template> found{}; // if the answer is Found
};

/// The templates that one render has requested, each path once.
/// Ownership: borrows the source, and owns the templates.
class included_templates {
  public:
    /// If `source` is null, files are found as `buildOutput` finds them. `limit` is the maximum
    /// total size of all templates.
    included_templates(TemplateSource* source, std::uint64_t limit)
        : source_(source), limit_(limit), left_(limit) {}

    const included_template& find(const String& path) {
        if (known_ == nullptr) {
            known_ = std::make_unique<known_templates>();
        }
        const auto known = known_->byPath.find(path);
        return known != known_->byPath.end() ? known->second : ask(path);
    }

    /// The same for the path of a tag. The tag is remembered, because looking up a long path is
    /// slow.
    const included_template& find(const name_use& use, const String& path) {
        if (known_ != nullptr) {
            const auto known = known_->byUse.find(&use);
            if (known != known_->byUse.end()) {
                return *known->second;
            }
        }
        const included_template& found = find(path);
        known_->byUse.emplace(&use, &found);
        return found;
    }

    /// The total size of all templates.
    std::uint64_t bytes() const noexcept { return limit_ - left_; }

  private:
    struct known_templates {
        std::map<String, included_template> byPath;
        std::unordered_map<const name_use*, const included_template*> byUse;
    };

    const included_template& ask(const String& path);

    TemplateSource* source_;
    const std::uint64_t limit_;
    std::uint64_t left_;
    std::unique_ptr<known_templates> known_; // null until something is included
};

} // namespace kel::Stencilor::internal

#endif
