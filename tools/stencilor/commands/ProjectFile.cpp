#include <libStencilorAnalysis/text/ShownText.h>
#include <libStencilorJson/JsonText.h>
#include <tools/stencilor/commands/Failure.h>
#include <tools/stencilor/commands/ProjectFile.h>
#include <tools/stencilor/system/System.h>

#include <algorithm>

namespace stencilor {

namespace {

using kel::Stencilor::Value;
using kel::Stencilor::Analysis::quote;

std::string textOf(const std::string& file, const std::string& name, const Value& value) {
    if (value.kind() != Value::Kind::Text) {
        throw Failure(file + ": " + quote(name) + " must be a string");
    }
    return value.text().str();
}

std::vector<std::string> textsOf(const std::string& file, const std::string& name,
                                 const Value& value) {
    if (value.kind() != Value::Kind::List) {
        throw Failure(file + ": " + quote(name) + " must be an array of strings");
    }
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < value.size(); ++i) {
        texts.push_back(textOf(file, name, value.at(i)));
    }
    return texts;
}

/// True if `..` is a part of a path. If the rest does not exist, its target is unknown.
bool hasParentPart(const std::string& path) {
    const std::string parts = "/" + path + "/";
    return parts.find("/../") != parts.npos || path.find("..\\") != path.npos ||
           path.find("\\..") != path.npos;
}

/// With a root outside its folder, a file that comes with the templates could open any other file.
std::string rootOf(const Project& project, const std::string& given) {
    const std::string root = system::identityOf(joinPath(project.folder, given));
    if (hasParentPart(given) || !isInside(root, system::identityOf(project.folder))) {
        throw Failure(project.file + ": the root " + quote(given) +
                      " is outside the folder of this file");
    }
    return root;
}

/// `**/` matches any number of folders, including none.
bool startsAnyFolders(std::string_view pattern) {
    return pattern.starts_with("**/");
}

} // namespace

bool Project::hasContextFor(const std::string& templateFile) const {
    if (patterns.empty()) {
        return true;
    }
    if (!isInside(templateFile, folder) || templateFile.size() <= folder.size()) {
        return false;
    }
    std::string path = templateFile.substr(folder.size() + (folder.ends_with('/') ? 0 : 1));
    std::replace(path.begin(), path.end(), '\\', '/');
    return std::any_of(patterns.begin(), patterns.end(),
                       [&path](const std::string& pattern) { return matchesGlob(pattern, path); });
}

Project parseProject(const std::string& file, std::string_view text) {
    Project project{.file = file, .folder = system::folderOf(file), .context = std::nullopt};
    Value content;
    try {
        content = kel::Stencilor::valueFromJsonText(text);
    } catch (const kel::Stencilor::JsonError& error) {
        throw Failure(file + ":" + error.what());
    }
    if (content.kind() != Value::Kind::Dictionary) {
        throw Failure(file + ": expected an object with root, context and files");
    }
    for (const kel::String& key : content.keys()) {
        const std::string name = key.str();
        const Value& value = *content.find(key);
        if (name == "root") {
            project.root = rootOf(project, textOf(file, name, value));
        } else if (name == "context") {
            project.context = joinPath(project.folder, textOf(file, name, value));
        } else if (name == "files") {
            project.patterns = textsOf(file, name, value);
        } else {
            throw Failure(file + ": " + quote(name) + " is unknown; expected root, context, files");
        }
    }
    return project;
}

std::optional<std::string> findProjectFile(const std::string& folder, const std::string& outermost,
                                           const std::function<bool(const std::string&)>& exists) {
    const bool goesUp = isInside(folder, outermost);
    for (std::string at = folder;; at = system::folderOf(at)) {
        std::string file = joinPath(at, projectFileName);
        if (exists(file)) {
            return file;
        }
        if (!goesUp || at == outermost || at == system::folderOf(at)) {
            return std::nullopt;
        }
    }
}

bool isInside(std::string_view path, std::string_view folder) {
    while (folder.size() > 1 && (folder.back() == '/' || folder.back() == '\\')) {
        folder.remove_suffix(1);
    }
    if (!path.starts_with(folder)) {
        return false;
    }
    const std::string_view rest = path.substr(folder.size());
    return rest.empty() || folder == "/" || rest.front() == '/' || rest.front() == '\\';
}

std::string joinPath(const std::string& folder, const std::string& path) {
    if (folder.empty() || system::isAbsolute(path)) {
        return path;
    }
    if (path == "." || path.empty()) {
        return folder;
    }
    return folder.ends_with('/') ? folder + path : folder + "/" + path;
}

bool matchesGlob(std::string_view pattern, std::string_view path) {
    // Where to continue if the text after the last `*` or `**` does not match.
    struct Retry {
        std::string_view pattern;
        std::string_view path;
        bool isSet = false;
    };
    Retry star;
    Retry folders;
    for (;;) {
        if (startsAnyFolders(pattern) || pattern == "**") {
            pattern.remove_prefix(std::min<std::size_t>(3, pattern.size()));
            if (pattern.empty()) {
                return true;
            }
            folders = {pattern, path, true};
            star = {};
        } else if (pattern.starts_with('*')) {
            pattern.remove_prefix(1);
            star = {pattern, path, true};
        } else if (!path.empty() && !pattern.empty() &&
                   (pattern.front() == path.front() ||
                    (pattern.front() == '?' && path.front() != '/'))) {
            pattern.remove_prefix(1);
            path.remove_prefix(1);
        } else if (path.empty() && pattern.empty()) {
            return true;
        } else if (star.isSet && !star.path.empty() && star.path.front() != '/') {
            star.path.remove_prefix(1);
            pattern = star.pattern;
            path = star.path;
        } else {
            const std::size_t slash = folders.isSet ? folders.path.find('/') : path.npos;
            if (slash == path.npos) {
                return false;
            }
            folders.path.remove_prefix(slash + 1);
            pattern = folders.pattern;
            path = folders.path;
            star = {};
        }
    }
}

} // namespace stencilor
