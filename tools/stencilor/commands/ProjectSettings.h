#ifndef TOOLS_STENCILOR_COMMANDS_PROJECTSETTINGS_H
#define TOOLS_STENCILOR_COMMANDS_PROJECTSETTINGS_H

#include <libStencilor/Value.h>
#include <tools/stencilor/commands/Files.h>
#include <tools/stencilor/commands/ProjectFile.h>
#include <tools/stencilor/commands/Request.h>

#include <map>
#include <optional>
#include <string>

namespace stencilor {

/// The settings in `stencilor.json` for the templates of a call, from the folder of each template
/// up to the working directory. Options of the call take precedence.
///
/// Ownership: borrows the request and the files that are read.
/// Errors: throws `Failure` for an unusable project file, once per file.
class ProjectSettings {
  public:
    ProjectSettings(const Request& request, Files& files) : request_(request), files_(files) {}

    /// Where the includes of a template are looked up; nothing if no project file specifies it.
    std::optional<std::string> rootOf(const std::string& templateFile);

    /// The context of a template; null if no project file names one.
    const kel::Stencilor::ContextBase* contextOf(const std::string& templateFile);

  private:
    const Project* projectOf(const std::string& path);
    std::string pathOf(const std::string& templateFile) const;

    const Request& request_;
    Files& files_;
    std::map<std::string, std::optional<Project>> projects_;
    std::map<std::string, kel::Stencilor::Context> contexts_;
};

} // namespace stencilor

#endif
