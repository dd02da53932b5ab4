#ifndef TOOLS_STENCILOR_COMMANDS_PROJECTFILE_H
#define TOOLS_STENCILOR_COMMANDS_PROJECTFILE_H

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace stencilor {

inline constexpr const char* projectFileName = "stencilor.json";

/// What a file `stencilor.json` says about the templates in its folder and below.
struct Project {
    std::string file;
    std::string folder;                 ///< that the file is in
    std::optional<std::string> root{};  ///< the folder that includes are looked up in
    std::optional<std::string> context; ///< a JSON file
    std::vector<std::string> patterns{};

    /// Whether a template is one of those that the context belongs to: without patterns all are.
    bool hasContextFor(const std::string& templateFile) const;
};

/// Reads such a file.
/// @param file its path, from which those in it are made
/// Errors: throws `Failure` where the text is not as it must be, or the root not a folder below the
///   file's own.
Project parseProject(const std::string& file, std::string_view text);

/// The path of the nearest one, in the folder of a template or around it.
/// @param folder of the template
/// @param outermost the last folder to look in, where it is around the template; otherwise only the
///   template's own folder is looked in
std::optional<std::string> findProjectFile(const std::string& folder, const std::string& outermost,
                                           const std::function<bool(const std::string&)>& exists);

/// Whether a path is a folder or leads to something below it. Both must be canonical.
bool isInside(std::string_view path, std::string_view folder);

std::string joinPath(const std::string& folder, const std::string& path);

/// Whether a path matches a pattern in which `*` and `?` are any characters within a name, and `**`
/// is any number of folders.
bool matchesGlob(std::string_view pattern, std::string_view path);

} // namespace stencilor

#endif
