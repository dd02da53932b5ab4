#include <libStencilorAnalysis/text/ShownText.h>
#include <tools/stencilor/commands/ContextSource.h>
#include <tools/stencilor/commands/Failure.h>
#include <tools/stencilor/commands/ProjectSettings.h>

namespace stencilor {

using kel::Stencilor::Analysis::quote;

namespace {

std::string workingFolder() {
    return system::identityOf(".");
}

/// Relative to the working directory if the path is inside it, as in messages.
std::string shortPath(const std::string& path) {
    const std::string folder = workingFolder();
    if (path == folder) {
        return ".";
    }
    const std::size_t begin = folder.size() + (folder.ends_with('/') ? 0 : 1);
    return isInside(path, folder) ? path.substr(begin) : path;
}

} // namespace

/// Empty for the standard input, which belongs to no file.
std::string ProjectSettings::pathOf(const std::string& templateFile) const {
    const bool isStream = templateFile == standardStream;
    if (isStream && !request_.standardInputName) {
        return "";
    }
    const std::string& file = isStream ? *request_.standardInputName : templateFile;
    return joinPath(system::identityOf(system::folderOf(file)),
                    file.substr(file.find_last_of('/') + 1));
}

const Project* ProjectSettings::projectOf(const std::string& path) {
    const auto file = path.empty() ? std::nullopt
                                   : findProjectFile(system::folderOf(path), workingFolder(),
                                                     [](const std::string& name) {
                                                         return system::stateOf(name).has_value();
                                                     });
    if (!file) {
        return nullptr;
    }
    const auto [known, isNew] = projects_.try_emplace(*file);
    if (isNew) {
        const std::string name = shortPath(*file);
        Project project = parseProject(*file, files_.read(name));
        if (request_.root && project.root &&
            !isInside(*project.root, system::identityOf(*request_.root))) {
            throw Failure(name + ": the root " + quote(shortPath(*project.root)) + " is outside " +
                          quote(*request_.root));
        }
        known->second = std::move(project);
    }
    return known->second ? &*known->second : nullptr;
}

std::optional<std::string> ProjectSettings::rootOf(const std::string& templateFile) {
    const Project* const project = projectOf(pathOf(templateFile));
    return project != nullptr && project->root ? std::optional(shortPath(*project->root))
                                               : std::nullopt;
}

const kel::Stencilor::ContextBase* ProjectSettings::contextOf(const std::string& templateFile) {
    const std::string path = pathOf(templateFile);
    const Project* const project = projectOf(path);
    if (project == nullptr || !project->context || !project->hasContextFor(path)) {
        return nullptr;
    }
    auto known = contexts_.find(*project->context);
    if (known == contexts_.end()) {
        ContextRequest context;
        context.file = shortPath(*project->context);
        context.positions = request_.context.positions;
        known = contexts_.emplace(*project->context, makeContext(context, files_)).first;
    }
    return &static_cast<const kel::Stencilor::ContextBase&>(known->second);
}

} // namespace stencilor
