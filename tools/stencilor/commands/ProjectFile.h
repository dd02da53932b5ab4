#ifndef TOOLS_STENCILOR_COMMANDS_PROJECTFILE_H
#define TOOLS_STENCILOR_COMMANDS_PROJECTFILE_H

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace stencilor {

inline constexpr const char* projectFileName = "stencilor.json";

/// The settings in a file `stencilor.json` for the templates in its folder and its subfolders.
struct Project {
    std::string file;
    std::string folder;                 ///< the folder of the file
    std::optional<std::string> root{};  ///< the folder of the includes
    std::optional<std::string> context; ///< a JSON file
    std::vector<std::string> patterns{};

    /// True if the context applies to a template; without patterns, it applies to all.
    bool hasContextFor(const std::string& templateFile) const;
};

/// Reads a project file.
/// @param file its path, to which the paths in it are relative
/// Errors: throws `Failure` if the text is invalid, or the root is not in the folder of the file.
Project parseProject(const std::string& file, std::string_view text);

/// The path of the nearest project file, in the folder of a template or its parents.
/// @param folder the folder of the template
/// @param outermost the last folder to search, if it contains the template; otherwise only the
///   template's own folder is searched
std::optional<std::string> findProjectFile(const std::string& folder, const std::string& outermost,
                                           const std::function<bool(const std::string&)>& exists);

/// True if a path is the folder itself or inside it. Both must be canonical.
bool isInside(std::string_view path, std::string_view folder);

std::string joinPath(const std::string& folder, const std::string& path);

/// True if a path matches a pattern, in which `*` and `?` match characters within a name, and `**`
/// any number of folders.
bool matchesGlob(std::string_view pattern, std::string_view path);

} // namespace stencilor

#endif
