#ifndef LIBSTENCILORANALYSIS_TEMPLATE_TEMPLATEFILES_H
#define LIBSTENCILORANALYSIS_TEMPLATE_TEMPLATEFILES_H

#include <libStencilorAnalysis/template/TemplateFile.h>
#include <libStencilorAnalysis/template/TemplateReader.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace kel::Stencilor::Analysis {

/// Templates and their includes, each read and parsed once.
///
/// Ownership: borrows the reader; owns the templates, or shares those that were parsed already.
///   Their addresses do not change.
/// Threads: not thread-safe.
class TemplateFiles {
  public:
    /// The target of an include. `file` is null unless it was found.
    struct Included {
        TemplateReader::Answer answer;
        std::string name;
        const TemplateFile* file = nullptr;
    };

    explicit TemplateFiles(TemplateReader& reader) : reader_(reader) {}

    /// Adds a template that is not an include, or returns the one with the same identity.
    const TemplateFile& add(TemplateText text);

    const Included& include(const std::string& path);

  private:
    Included read(const std::string& path);

    TemplateReader& reader_;
    std::vector<std::shared_ptr<const TemplateFile>> files_;
    std::map<std::string, const TemplateFile*> known_; // by identity
    std::map<std::string, Included> included_;         // by path
};

} // namespace kel::Stencilor::Analysis

#endif
