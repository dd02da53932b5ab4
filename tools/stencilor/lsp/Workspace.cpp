#include <libKel/Buffer.h>
#include <libKel/String.h>
#include <libStencilorAnalysis/text/CodePoint.h>
#include <libStencilorAnalysis/text/ShownText.h>
#include <libStencilorJson/JsonText.h>
#include <tools/stencilor/commands/Failure.h>
#include <tools/stencilor/lsp/Workspace.h>

#include <algorithm>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace stencilor::lsp {

using namespace kel::Stencilor::Analysis;
using kel::Stencilor::Context;
using kel::Stencilor::JsonError;
using kel::Stencilor::SyntaxRange;
using kel::Stencilor::Value;

namespace {

constexpr std::uint64_t longestText = std::uint64_t{256} << 20;

/// The character at an offset; empty at the end.
SyntaxRange characterAt(std::string_view text, std::size_t offset) {
    const std::size_t begin = std::min(offset, text.size());
    const std::size_t size = begin < text.size() ? firstCodePoint(text.substr(begin)).size : 0;
    return {static_cast<unsigned int>(begin), static_cast<unsigned int>(begin + size)};
}

ContextFile makeContext(const std::string& name, std::string text, bool positions) {
    ContextFile file{.name = name, .text = std::move(text), .context = std::nullopt};
    try {
        const Value values = kel::Stencilor::valueFromJsonText(file.text);
        file.context.emplace(values, kel::Stencilor::ContextOptions{.positions = positions});
    } catch (const JsonError& error) {
        file.fault = error.reason();
        file.place = characterAt(file.text, error.offset());
    } catch (const std::invalid_argument&) {
        file.fault = "expected an object, whose members the template can name";
    } catch (const std::length_error& error) {
        file.fault = error.what();
    }
    return file;
}

} // namespace

void Workspace::set(const Json& settings) {
    settings_ = {};
    reported_.clear();
    if (settings.is_object()) {
        settings_.root = textIn(settings, "root");
        settings_.context = textIn(settings, "context");
        settings_.positions = isOn(settings, "positions");
        settings_.emptyLines = isOn(settings, "emptyLines");
    }
}

std::optional<std::string> Workspace::textIn(const Json& settings, const char* name) {
    const auto found = settings.find(name);
    if (found == settings.end() || found->is_null() || *found == "") {
        return std::nullopt;
    }
    if (!found->is_string()) {
        report("the setting " + quote(name) + " is not a string");
        return std::nullopt;
    }
    return found->get<std::string>();
}

bool Workspace::isOn(const Json& settings, const char* name) {
    const auto found = settings.find(name);
    if (found == settings.end() || found->is_null()) {
        return false;
    }
    if (!found->is_boolean()) {
        report("the setting " + quote(name) + " is neither true nor false");
        return false;
    }
    return found->get<bool>();
}

/// The outermost folder whose settings may apply to a document: the innermost one of the workspace.
std::string Workspace::folderAround(const Document& document) const {
    std::string folder;
    for (const std::string& each : folders_) {
        if (isInside(document.name, each) && each.size() > folder.size()) {
            folder = each;
        }
    }
    if (!folder.empty()) {
        return folder;
    }
    return document.isFile    ? system::folderOf(document.name)
           : folders_.empty() ? "."
                              : folders_.front();
}

std::optional<Project> Workspace::projectOf(const Document& document) {
    if (!document.isFile) {
        return std::nullopt;
    }
    const auto file = findProjectFile(system::folderOf(document.name), folderAround(document),
                                      [this](const std::string& name) { return exists(name); });
    if (!file) {
        return std::nullopt;
    }
    const auto text = read(*file);
    if (!text) {
        report(*file + ": the file cannot be read");
        return std::nullopt;
    }
    try {
        return parseProject(*file, *text);
    } catch (const Failure& failure) {
        report(failure.what());
        return std::nullopt;
    }
}

/// A project may only name a folder inside the configured root.
std::string Workspace::rootOf(const Document& document, const std::optional<Project>& project) {
    const auto openFolder = [this](const std::string& path) {
        if (kel::Folder::open(path)) {
            return true;
        }
        report("the root " + quote(path) + " is not a folder that can be read");
        return false;
    };
    std::optional<std::string> root;
    if (settings_.root) {
        const std::string path =
            system::identityOf(joinPath(folderAround(document), *settings_.root));
        root = openFolder(path) ? std::optional(path) : std::nullopt;
    }
    if (project && project->root) {
        if (root && !isInside(*project->root, *root)) {
            report(project->file + ": the root " + quote(*project->root) +
                   " is outside the configured root " + quote(*root));
        } else if (openFolder(*project->root)) {
            root = project->root;
        }
    }
    return root              ? *root
           : document.isFile ? system::folderOf(document.name)
                             : folderAround(document);
}

Surroundings Workspace::surroundingsOf(const Document& document) {
    const std::optional<Project> project = projectOf(document);
    Surroundings around{.root = rootOf(document, project), .context = nullptr};
    const std::string own = document.name + ".context.json";
    if (document.isFile && exists(own)) {
        around.context = context(own);
        around.isNamed = true;
    } else if (project && project->context && project->hasContextFor(document.name)) {
        around.context = context(*project->context);
        around.isNamed = !project->patterns.empty();
    } else if (settings_.context && !(project && project->context)) {
        around.context = context(joinPath(folderAround(document), *settings_.context));
    }
    return around;
}

bool Workspace::exists(const std::string& name) const {
    return documents_.find(name) != nullptr || system::stateOf(name).has_value();
}

std::optional<std::string> Workspace::read(const std::string& name) const {
    if (const Document* const document = documents_.find(name)) {
        return document->text.text();
    }
    const auto state = system::stateOf(name);
    if (!state || state->size > longestText) {
        return std::nullopt;
    }
    try {
        return system::readFile(name);
    } catch (const std::system_error&) {
        return std::nullopt;
    }
}

std::shared_ptr<const ContextFile> Workspace::context(const std::string& path) {
    const std::string name = system::identityOf(path);
    const Document* const document = documents_.find(name);
    const auto state = document != nullptr ? std::nullopt : system::stateOf(name);
    KnownContext& known = contexts_[name];
    // The versions of a buffer begin again when it is closed and opened.
    const bool isSame = known.file != nullptr && known.positions == settings_.positions &&
                        (document != nullptr ? known.file->text == document->text.text()
                                             : state && known.state == state);
    if (!isSame) {
        auto text = read(name);
        if (!text) {
            report("the context " + quote(path) + " cannot be read");
            contexts_.erase(name);
            return nullptr;
        }
        known = {.file = std::make_shared<const ContextFile>(
                     makeContext(name, std::move(*text), settings_.positions)),
                 .state = state,
                 .positions = settings_.positions};
    }
    return known.file;
}

void Workspace::report(const std::string& fault) {
    if (reported_.insert(fault).second) {
        faults_.push_back(fault);
    }
}

std::vector<std::string> Workspace::takeFaults() {
    return std::exchange(faults_, {});
}

BufferedFolder::BufferedFolder(std::string root, const Documents& documents)
    : root_(std::move(root)), folder_(kel::Folder::open(root_)), documents_(documents) {}

std::string BufferedFolder::locate(const std::string& path) const {
    const std::string name = system::identityOf(joinPath(root_, path));
    if (folder_ && folder_->find(path)) {
        return name;
    }
    // A document that has never been saved.
    const bool isBuffer =
        documents_.find(name) != nullptr && isInside(name, root_) && path.find("..") == path.npos;
    return isBuffer ? name : "";
}

TemplateReader::Answer BufferedFolder::find(const std::string& path, TemplateText& found) {
    found.identity = locate(path);
    found.name = found.identity.empty() ? joinPath(root_, path) : found.identity;
    if (found.identity.empty()) {
        return Answer::Missing;
    }
    if (const Document* const document = documents_.find(found.identity)) {
        found.file = document->sharedSyntax();
        return Answer::Found;
    }
    kel::Buffer<unsigned char> bytes;
    kel::FileState state;
    if (folder_->load(path, longestFile, bytes, state) != kel::Folder::Answer::Found) {
        return Answer::Unreadable;
    }
    found.text.assign(reinterpret_cast<const char*>(bytes.data), bytes.size);
    return Answer::Found;
}

} // namespace stencilor::lsp
