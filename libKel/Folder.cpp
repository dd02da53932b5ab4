#include <libKel/Folder.h>
#include <libKel/SystemFiles.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace kel {

namespace {

/// Grows `buffer` to `capacity` bytes and keeps its content.
void resize(Buffer<unsigned char>& buffer, std::uint64_t capacity) {
    auto* block = static_cast<unsigned char*>(::operator new(capacity));
    const std::uint64_t size = buffer.size;
    if (size > 0) {
        std::memcpy(block, buffer.data, size);
    }
    buffer.release();
    buffer.data = block;
    buffer.size = size;
    buffer.capacity = capacity;
}

/// Reads to the end of the file, but at most one byte more than `maxBytes`. Returns false on
/// failure.
///
/// Requests one byte more than the expected size, so that a single read detects the end. Files that
/// the system generates on reading (in /proc) have a size of 0 and are read until the end.
bool readToEnd(const OpenFile& file, std::uint64_t maxBytes, Buffer<unsigned char>& out) {
    const std::uint64_t expected = file.state()->size;
    resize(out, expected + 1);
    while (out.size <= maxBytes) {
        if (out.size == out.capacity) {
            resize(out, std::min(out.capacity * 2, maxBytes) + 1);
        }
        const std::uint64_t room = out.capacity - out.size;
        const std::optional<std::uint64_t> count = file.read(out.data + out.size, room);
        if (!count) {
            return false;
        }
        out.size += *count;
        if (*count == 0 || (*count < room && out.size == expected)) {
            return true;
        }
    }
    return true;
}

/// Reads an open file of at most `maxBytes`. `out` must be empty, and stays empty unless the answer
/// is `Found`.
Folder::Answer readWhole(const OpenFile& file, std::uint64_t maxBytes, Buffer<unsigned char>& out) {
    if (file.state()->size > maxBytes) {
        return Folder::Answer::TooLarge;
    }
    const bool isRead = readToEnd(file, maxBytes, out);
    if (isRead && out.size <= maxBytes) {
        return Folder::Answer::Found;
    }
    out.release();
    return isRead ? Folder::Answer::TooLarge : Folder::Answer::Unreadable;
}

} // namespace

Folder::Answer loadWhole(const SystemPath* root, const String& path, std::uint64_t maxBytes,
                         Buffer<unsigned char>& out, FileState& state) {
    out.release();
    const OpenFile file(root, path);
    if (!file.state()) {
        return findFile(root, path) ? Folder::Answer::Unreadable : Folder::Answer::Missing;
    }
    state = *file.state();
    return readWhole(file, maxBytes, out);
}

Folder::Folder(std::shared_ptr<const Directory> directory) noexcept
    : directory_(std::move(directory)) {}

std::optional<Folder> Folder::open(const String& directory) {
    std::optional<SystemPath> path = resolveDirectory(directory);
    if (!path) {
        return std::nullopt;
    }
    return Folder(std::make_shared<const Directory>(Directory{std::move(*path)}));
}

std::optional<FileState> Folder::find(const String& path) const {
    return findFile(&directory_->path, path);
}

Folder::Answer Folder::load(const String& path, std::uint64_t maxBytes, Buffer<unsigned char>& out,
                            FileState& state) const {
    return loadWhole(&directory_->path, path, maxBytes, out, state);
}

} // namespace kel
