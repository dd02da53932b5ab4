#ifndef TOOLS_STENCILOR_SYSTEM_FOLDERLIST_H
#define TOOLS_STENCILOR_SYSTEM_FOLDERLIST_H

#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

namespace stencilor::system {

/// The part of `namesIn` that is the same on every system; `toText` converts a name to UTF-8.
template <typename ToText>
std::vector<std::string> listFolder(const std::filesystem::path& folder, ToText toText) {
    std::vector<std::string> names;
    std::error_code failure;
    std::filesystem::directory_iterator entry(folder, failure);
    for (; !failure && entry != std::filesystem::directory_iterator(); entry.increment(failure)) {
        std::error_code unknown;
        const bool isFolder = entry->is_directory(unknown);
        if (isFolder || entry->is_regular_file(unknown)) {
            names.push_back(toText(entry->path().filename()) + (isFolder ? "/" : ""));
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace stencilor::system

#endif
