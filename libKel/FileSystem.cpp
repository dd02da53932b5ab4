#include <libKel/FileSystem.h>
#include <libKel/ProcessState.h>
#include <libKel/SystemFiles.h>

#include <limits>
#include <optional>
#include <utility>

namespace kel {

namespace {

constexpr std::uint64_t longestFile = std::numeric_limits<std::uint32_t>::max();

constinit Immortal<std::optional<Folder>> sharedRoot;

std::optional<Folder> currentRoot() {
    const ProcessLock lock;
    return sharedRoot.value;
}

/// The former root is freed by the caller, when the lock is free again.
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
    out.release();
    if (length != nullptr) {
        *length = 0;
    }
    const std::optional<Folder> root = currentRoot();
    const OpenFile file(root ? &root->directory_->path : nullptr, path);
    if (!file.state() || readWhole(file, longestFile, out) != Folder::Answer::Found) {
        return false;
    }
    if (length != nullptr) {
        *length = static_cast<unsigned long>(out.size);
    }
    return true;
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
