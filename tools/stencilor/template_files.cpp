#include <libKel/Buffer.h>
#include <libKel/FileSystem.h>
#include <libKel/String.h>

#include <tools/stencilor/failure.h>
#include <tools/stencilor/files.h>
#include <tools/stencilor/platform.h>
#include <tools/stencilor/template_files.h>

#include <utility>

namespace stencilor {

namespace {

/// No path holds a NUL.
std::string keyOf(const std::string& root, const std::string& file) {
    return root + '\0' + file;
}

} // namespace

std::string includeRoot(const std::string& templateFile, const std::optional<std::string>& root) {
    if (root) {
        return *root;
    }
    return templateFile == standardStream ? "." : platform::folderOf(templateFile);
}

void confineIncludes(const std::string& root) {
    if (!kel::FileSystem::setRoot(root)) {
        throw Failure(root + ": not a folder that included files can be read from");
    }
}

const TemplateFile& TemplateFiles::open(const std::string& file,
                                        const std::optional<std::string>& root) {
    return add(file, readInput(file), root);
}

const TemplateFile& TemplateFiles::add(const std::string& file, std::string text,
                                       const std::optional<std::string>& root) {
    root_ = includeRoot(file, root);
    confineIncludes(root_);
    const bool isStandardInput = file == standardStream;
    return keep(inputName(file), isStandardInput ? "" : platform::identityOf(file),
                std::move(text));
}

TemplateFiles::Included TemplateFiles::include(const std::string& path) {
    const std::string key = keyOf(root_, path);
    const auto found = included_.find(key);
    return found != included_.end() ? found->second
                                    : included_.emplace(key, load(path)).first->second;
}

std::string TemplateFiles::pathOf(const std::string& path) const {
    if (root_ == ".") {
        return path;
    }
    return root_.ends_with('/') ? root_ + path : root_ + "/" + path;
}

TemplateFiles::Included TemplateFiles::load(const std::string& path) {
    if (!kel::FileSystem::exists(path)) {
        return {};
    }
    kel::Buffer<unsigned char> bytes;
    if (!kel::FileSystem::loadFile(path, bytes, nullptr)) {
        return {nullptr, true};
    }
    const std::string name = pathOf(path);
    return {&keep(name, platform::identityOf(name),
                  std::string(reinterpret_cast<const char*>(bytes.data), bytes.size)),
            true};
}

const TemplateFile& TemplateFiles::keep(const std::string& name, const std::string& identity,
                                        std::string text) {
    // With another root, other files are included.
    const TemplateFile*& known = known_[keyOf(root_, identity)];
    if (known == nullptr) {
        known = &files_.emplace_back(name, std::move(text));
    }
    return *known;
}

} // namespace stencilor
