#ifndef LIBSTENCILORANALYSIS_TEMPLATE_TEMPLATEREADER_H
#define LIBSTENCILORANALYSIS_TEMPLATE_TEMPLATEREADER_H

#include <string>

namespace kel::Stencilor::Analysis {

/// The text of a template, and how to refer to it.
struct TemplateText {
    std::string name;     ///< what findings call it
    std::string identity; ///< the same for every path to the same template
    std::string text;
};

/// Finds templates by the paths in inclusions: among files, an editor's buffers, in memory.
/// Ownership: the caller keeps it for as long as templates are read through it.
/// Errors: what an implementation throws reaches the caller of the analysis.
class TemplateReader {
  public:
    enum class Answer { Found, Missing, Unreadable };

    TemplateReader() = default;
    TemplateReader(const TemplateReader&) = delete;
    TemplateReader& operator=(const TemplateReader&) = delete;
    virtual ~TemplateReader() = default;

    /// Finds the template that `path` includes. Sets `found.name` in any case, the rest if it is
    /// found.
    virtual Answer find(const std::string& path, TemplateText& found) = 0;
};

} // namespace kel::Stencilor::Analysis

#endif
