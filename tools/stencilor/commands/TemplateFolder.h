#ifndef TOOLS_STENCILOR_COMMANDS_TEMPLATEFOLDER_H
#define TOOLS_STENCILOR_COMMANDS_TEMPLATEFOLDER_H

#include <libKel/Folder.h>
#include <libStencilorAnalysis/template/TemplateReader.h>
#include <tools/stencilor/commands/Files.h>
#include <tools/stencilor/commands/Request.h>

#include <cstdint>
#include <string>

namespace stencilor {

/// The folder for the includes of a template: the root if it is given, otherwise the template's
/// folder, or the working directory for the standard input.
std::string includeRoot(const std::string& templateFile, const Request& request);

/// Reads a template that the user names.
/// Errors: throws `Failure`.
kel::Stencilor::Analysis::TemplateText readTemplate(const std::string& templateFile,
                                                    const Request& request, Files& files);

/// The templates in one folder, found as by the engine.
///
/// Ownership: borrows the files.
class TemplateFolder final : public kel::Stencilor::Analysis::TemplateReader {
  public:
    /// Errors: throws `Failure` if `root` is not a readable folder.
    TemplateFolder(const std::string& root, Files& files);

    Answer find(const std::string& path, kel::Stencilor::Analysis::TemplateText& found) override;

    /// The same, for a template of at most `maxBytes`.
    kel::Folder::Answer load(const std::string& path, std::uint64_t maxBytes,
                             kel::Stencilor::Analysis::TemplateText& found) const;

  private:
    /// The path of an included file, from the working directory.
    std::string nameOf(const std::string& path) const;

    std::string root_;
    kel::Folder folder_;
    Files& files_;
};

} // namespace stencilor

#endif
