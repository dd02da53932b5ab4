#ifndef TOOLS_STENCILOR_TEMPLATE_FILES_H
#define TOOLS_STENCILOR_TEMPLATE_FILES_H

#include <tools/stencilor/template_file.h>

#include <deque>
#include <map>
#include <optional>
#include <string>

namespace stencilor {

/// Where the files that a template includes are looked up: below `root`, where it is given,
/// otherwise below the template's own folder, or the working directory for the standard input.
std::string includeRoot(const std::string& templateFile, const std::optional<std::string>& root);

/// Has the engine's base library look up files below `root` and nowhere else.
/// Errors: throws `Failure`.
void confineIncludes(const std::string& root);

/// The templates that a command looks at, each read once. Included files are found as the engine
/// finds them.
///
/// Ownership: owns the templates; they stay where they are as long as this object.
/// Threads: none but one, since the root is one for the whole process.
class TemplateFiles {
  public:
    /// Reads a template that the user names, `-` for the standard input, and looks up what is
    /// included below its root from now on.
    /// Errors: throws `Failure`.
    const TemplateFile& open(const std::string& file, const std::optional<std::string>& root);

    /// The same for one that was read already.
    const TemplateFile& add(const std::string& file, std::string text,
                            const std::optional<std::string>& root);

    /// A file that is included. One that is there and cannot be read has no template.
    struct Included {
        const TemplateFile* file = nullptr;
        bool exists = false;
    };

    Included include(const std::string& path);

    /// The path of an included file, from the working directory.
    std::string pathOf(const std::string& path) const;

  private:
    Included load(const std::string& path);
    const TemplateFile& keep(const std::string& name, const std::string& identity,
                             std::string text);

    std::string root_;
    std::deque<TemplateFile> files_;
    std::map<std::string, const TemplateFile*> known_; // by root and identity
    std::map<std::string, Included> included_;         // by root and path
};

} // namespace stencilor

#endif
