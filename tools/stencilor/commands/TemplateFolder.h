#ifndef TOOLS_STENCILOR_COMMANDS_TEMPLATEFOLDER_H
#define TOOLS_STENCILOR_COMMANDS_TEMPLATEFOLDER_H

#include <libKel/Folder.h>
#include <libStencilorAnalysis/template/TemplateFiles.h>

#include <map>
#include <optional>
#include <string>

namespace stencilor {

/// Where the files that a template includes are looked up: below `root`, where it is given,
/// otherwise below the template's own folder, or the working directory for the standard input.
std::string includeRoot(const std::string& templateFile, const std::optional<std::string>& root);

[[noreturn]] void failWithoutRoot(const std::string& root);

/// The templates below one folder, found as the engine finds them.
class TemplateFolder final : public kel::Stencilor::Analysis::TemplateReader {
  public:
    /// Errors: throws `Failure` if `root` is not a folder that can be read from.
    explicit TemplateFolder(const std::string& root);

    Answer find(const std::string& path, kel::Stencilor::Analysis::TemplateText& found) override;

  private:
    /// The path of an included file, from the working directory.
    std::string nameOf(const std::string& path) const;

    std::string root_;
    kel::Folder folder_;
};

/// The templates that the user names, with those that they include.
///
/// Ownership: owns the templates; they stay where they are for as long as this object.
class NamedTemplates {
  public:
    /// A template, and the files that it belongs to.
    struct Named {
        kel::Stencilor::Analysis::TemplateFiles& files;
        const kel::Stencilor::Analysis::TemplateFile& file;
    };

    /// Reads a template, `-` for the standard input.
    /// Errors: throws `Failure`.
    Named open(const std::string& file, const std::optional<std::string>& root);

    /// The same for one that was read already.
    Named add(const std::string& file, std::string text, const std::optional<std::string>& root);

  private:
    /// With another root, other files are included.
    struct Root {
        explicit Root(const std::string& path) : folder(path), files(folder) {}

        TemplateFolder folder;
        kel::Stencilor::Analysis::TemplateFiles files;
    };

    std::map<std::string, Root> roots_;
};

} // namespace stencilor

#endif
