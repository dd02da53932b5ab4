#ifndef LIBSTENCILORANALYSIS_TEMPLATE_TEMPLATEREADER_H
#define LIBSTENCILORANALYSIS_TEMPLATE_TEMPLATEREADER_H

#include <memory>
#include <string>

namespace kel::Stencilor::Analysis {

class TemplateFile;

/// The text of a template, and how to refer to it.
struct TemplateText {
    std::string name;     ///< its name in findings
    std::string identity; ///< the same for every path to the same template
    std::string text;
    std::shared_ptr<const TemplateFile> file{}; ///< if it is parsed already; `text` does not count
};

/// Finds included templates by path: in files, in an editor's buffers, or in memory.
/// Ownership: must outlive the analyses that use it.
/// Errors: exceptions reach the caller of the analysis.
class TemplateReader {
  public:
    enum class Answer { Found, Missing, Unreadable };

    TemplateReader() = default;
    TemplateReader(const TemplateReader&) = delete;
    TemplateReader& operator=(const TemplateReader&) = delete;
    virtual ~TemplateReader() = default;

    /// Finds the template at `path`. Always sets `found.name`, and the rest if it was found.
    virtual Answer find(const std::string& path, TemplateText& found) = 0;
};

} // namespace kel::Stencilor::Analysis

#endif
