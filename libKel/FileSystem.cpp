#include <libKel/FileSystem.h>
#include <libKel/ProcessState.h>
#include <libKel/SystemFiles.h>

#include <limits>
#include <optional>

namespace kel {

namespace {

constexpr std::uint64_t longestFile = std::numeric_limits<std::uint32_t>::max();

constinit Immortal<std::optional<Folder>> sharedRoot;

std::optional<Folder> currentRoot() {
    const ProcessLock lock;
    return sharedRoot.value;
}

/// The caller frees the previous root after the lock is released.
void exchangeRoot(std::optional<Folder>& root) {
    const ProcessLock lock;
    sharedRoot.value.swap(root);
}

} // namespace

bool FileSystem::exists(const String& path) {
    const std::optional<Folder> root = currentRoot();
    return findFile(root ? &root->directory_->path : nullptr, path).has_value();
}

bool FileSystem::loadFile(const String& path, Buffer<unsigned char>& out, unsigned long* length) {
    const bool isLoaded = load(path, longestFile, out) == Folder::Answer::Found;
    if (length != nullptr) {
        *length = static_cast<unsigned long>(out.size);
    }
    return isLoaded;
}

Folder::Answer FileSystem::load(const String& path, std::uint64_t maxBytes,
                                Buffer<unsigned char>& out) {
    const std::optional<Folder> root = currentRoot();
    FileState state;
    return loadWhole(root ? &root->directory_->path : nullptr, path, maxBytes, out, state);
}

bool FileSystem::setRoot(const String& directory) {
    std::optional<Folder> root = Folder::open(directory);
    if (!root) {
        return false;
    }
    exchangeRoot(root);
    return true;
}

void FileSystem::clearRoot() {
    std::optional<Folder> none;
    exchangeRoot(none);
}

} // namespace kel
