#include <libKel/Buffer.h>
#include <libKel/String.h>
#include <tools/stencilor/commands/Failure.h>
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
    throw Failure(path + ": not a readable folder");
}

/// The file that a template belongs to, or `-`.
const std::string& fileOf(const std::string& templateFile, const Request& request) {
    return templateFile == standardStream && request.standardInputName ? *request.standardInputName
                                                                       : templateFile;
}

} // namespace

std::string includeRoot(const std::string& templateFile, const Request& request) {
    const std::string& file = fileOf(templateFile, request);
    return request.root ? *request.root : file == standardStream ? "." : system::folderOf(file);
}

TemplateText readTemplate(const std::string& templateFile, const Request& request, Files& files) {
    const std::string& file = fileOf(templateFile, request);
    if (file == standardStream) {
        return {inputName(file), "", files.read(file)};
    }
    files.note(file);
    return {file, system::identityOf(file), files.read(templateFile)};
}

TemplateFolder::TemplateFolder(const std::string& root, Files& files)
    : root_(root), folder_(openFolder(root)), files_(files) {}

TemplateReader::Answer TemplateFolder::find(const std::string& path, TemplateText& found) {
    switch (load(path, system::longestText, found)) {
    case kel::Folder::Answer::Found:
        return Answer::Found;
    case kel::Folder::Answer::Missing:
        return Answer::Missing;
    default:
        return Answer::Unreadable;
    }
}

kel::Folder::Answer TemplateFolder::load(const std::string& path, std::uint64_t maxBytes,
                                         TemplateText& found) const {
    found.name = nameOf(path);
    files_.note(found.name);
    kel::Buffer<unsigned char> bytes;
    kel::FileState state;
    const kel::Folder::Answer answer = folder_.load(path, maxBytes, bytes, state);
    if (answer == kel::Folder::Answer::Found) {
        found.identity = system::identityOf(found.name);
        found.text.assign(reinterpret_cast<const char*>(bytes.data), bytes.size);
    }
    return answer;
}

std::string TemplateFolder::nameOf(const std::string& path) const {
    if (root_ == ".") {
        return path;
    }
    return root_.ends_with('/') ? root_ + path : root_ + "/" + path;
}

} // namespace stencilor
