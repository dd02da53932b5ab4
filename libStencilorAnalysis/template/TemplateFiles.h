#ifndef LIBSTENCILORANALYSIS_TEMPLATE_TEMPLATEFILES_H
#define LIBSTENCILORANALYSIS_TEMPLATE_TEMPLATEFILES_H

#include <libStencilorAnalysis/template/TemplateFile.h>
#include <libStencilorAnalysis/template/TemplateReader.h>

#include <deque>
#include <map>
#include <string>

namespace kel::Stencilor::Analysis {

/// Templates and what they include, each read and parsed once.
///
/// Ownership: borrows the reader, owns the templates. They stay where they are for as long as this
///   object.
/// Threads: one at a time.
class TemplateFiles {
  public:
    /// What a path includes. `file` is null unless it was found.
    struct Included {
        TemplateReader::Answer answer;
        std::string name;
        const TemplateFile* file = nullptr;
    };

    explicit TemplateFiles(TemplateReader& reader) : reader_(reader) {}

    /// Adds a template that was not included. One of the same identity is returned as it is.
    const TemplateFile& add(TemplateText text);

    const Included& include(const std::string& path);

  private:
    Included read(const std::string& path);

    TemplateReader& reader_;
    std::deque<TemplateFile> files_;
    std::map<std::string, const TemplateFile*> known_; // by identity
    std::map<std::string, Included> included_;         // by path
};

} // namespace kel::Stencilor::Analysis

#endif
