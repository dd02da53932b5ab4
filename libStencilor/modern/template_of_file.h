#ifndef LIBSTENCILOR_MODERN_TEMPLATE_OF_FILE_H
#define LIBSTENCILOR_MODERN_TEMPLATE_OF_FILE_H

#include <libKel/Folder.h>
#include <libStencilor/Template.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>

namespace kel::Stencilor::internal {

/// Makes a template named `path` from a file of at most `maxBytes`, for a source. `load` reads the
/// file; it takes the maximum size and the buffer.
template <typename Load>
TemplateSource::Answer templateOfFile(const String& path, std::uint64_t maxBytes,
                                      std::optional<Template>& found, Load load) {
    using Answer = TemplateSource::Answer;
    constexpr std::uint64_t longest = std::numeric_limits<unsigned int>::max(); // of text
    Buffer<unsigned char> bytes;
    switch (load(std::min(maxBytes, longest), bytes)) {
    case Folder::Answer::Found:
        break;
    case Folder::Answer::Missing:
        return Answer::Missing;
    case Folder::Answer::Unreadable:
        return Answer::Unreadable;
    case Folder::Answer::TooLarge:
        return maxBytes > longest ? Answer::Unreadable : Answer::TooLarge;
    }
    found.emplace(
        String(reinterpret_cast<const char*>(bytes.data), static_cast<unsigned int>(bytes.size)),
        path);
    return Answer::Found;
}

} // namespace kel::Stencilor::internal

#endif
