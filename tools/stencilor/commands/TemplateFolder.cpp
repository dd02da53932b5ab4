#include <libKel/Buffer.h>
#include <libKel/String.h>
#include <tools/stencilor/commands/Failure.h>
#include <tools/stencilor/commands/Files.h>
#include <tools/stencilor/commands/TemplateFolder.h>
#include <tools/stencilor/system/System.h>

#include <utility>

namespace stencilor {

using namespace kel::Stencilor::Analysis;

namespace {

kel::Folder openFolder(const std::string& path) {
    if (auto folder = kel::Folder::open(path)) {
        return *folder;
    }
    failWithoutRoot(path);
}

} // namespace

void failWithoutRoot(const std::string& root) {
    throw Failure(root + ": not a folder that included files can be read from");
}

std::string includeRoot(const std::string& templateFile, const std::optional<std::string>& root) {
    if (root) {
        return *root;
    }
    return templateFile == standardStream ? "." : system::folderOf(templateFile);
}

TemplateFolder::TemplateFolder(const std::string& root) : root_(root), folder_(openFolder(root)) {}

TemplateReader::Answer TemplateFolder::find(const std::string& path, TemplateText& found) {
    found.name = nameOf(path);
    kel::Buffer<unsigned char> bytes;
    kel::FileState state;
    switch (folder_.load(path, system::longestText, bytes, state)) {
    case kel::Folder::Answer::Found:
        found.identity = system::identityOf(found.name);
        found.text.assign(reinterpret_cast<const char*>(bytes.data), bytes.size);
        return Answer::Found;
    case kel::Folder::Answer::Missing:
        return Answer::Missing;
    default:
        return Answer::Unreadable;
    }
}

std::string TemplateFolder::nameOf(const std::string& path) const {
    if (root_ == ".") {
        return path;
    }
    return root_.ends_with('/') ? root_ + path : root_ + "/" + path;
}

NamedTemplates::Named NamedTemplates::open(const std::string& file,
                                           const std::optional<std::string>& root) {
    return add(file, readInput(file), root);
}

NamedTemplates::Named NamedTemplates::add(const std::string& file, std::string text,
                                          const std::optional<std::string>& root) {
    const std::string path = includeRoot(file, root);
    TemplateFiles& files = roots_.try_emplace(path, path).first->second.files;
    const std::string identity = file == standardStream ? "" : system::identityOf(file);
    return {files, files.add({inputName(file), identity, std::move(text)})};
}

} // namespace stencilor
