#include <libKel/RootedPath.h>

#include <algorithm>
#include <array>

namespace kel {

namespace {

constexpr std::string_view forbidden = "\\:*?\"<>|";

/// The device names that exist in every Windows directory, with any extension (Microsoft's "Naming
/// Files, Paths, and Namespaces"). `#` stands for a digit, including superscripts.
constexpr std::array<std::string_view, 8> devices = {"CON",    "PRN",     "AUX",  "NUL",
                                                     "CONIN$", "CONOUT$", "COM#", "LPT#"};

char upperCase(char letter) noexcept {
    return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
}

bool isDigit(std::string_view text) noexcept {
    const bool superscript = text == "\u00B9" || text == "\u00B2" || text == "\u00B3";
    return superscript || (text.size() == 1 && text[0] >= '0' && text[0] <= '9');
}

bool matchesDevice(std::string_view name, std::string_view device) noexcept {
    const bool numbered = device.back() == '#';
    const std::string_view letters = device.substr(0, device.size() - (numbered ? 1 : 0));
    if (name.size() < letters.size() ||
        !std::equal(letters.begin(), letters.end(), name.begin(),
                    [](char wanted, char found) { return wanted == upperCase(found); })) {
        return false;
    }
    const std::string_view rest = name.substr(letters.size());
    return numbered ? isDigit(rest) : rest.empty();
}

bool isDevice(std::string_view part) noexcept {
    std::string_view name = part.substr(0, part.find('.'));
    while (!name.empty() && name.back() == ' ') {
        name.remove_suffix(1);
    }
    return std::any_of(devices.begin(), devices.end(),
                       [name](std::string_view device) { return matchesDevice(name, device); });
}

bool isNameOnWindows(std::string_view part) noexcept {
    return part.empty() || part == "." || part == ".." ||
           (part.back() != '.' && part.back() != ' ' && !isDevice(part));
}

bool isPortablePart(std::string_view part) noexcept {
    const bool plain = std::none_of(part.begin(), part.end(), [](char character) {
        return static_cast<unsigned char>(character) < 0x20 ||
               forbidden.find(character) != std::string_view::npos;
    });
    return plain && isNameOnWindows(part);
}

bool allParts(std::string_view path, std::string_view separators,
              bool (*accepts)(std::string_view) noexcept) noexcept {
    while (true) {
        const std::size_t end = path.find_first_of(separators);
        if (!accepts(path.substr(0, end))) {
            return false;
        }
        if (end == std::string_view::npos) {
            return true;
        }
        path.remove_prefix(end + 1);
    }
}

} // namespace

bool isPortableRelativePath(std::string_view path) noexcept {
    return !path.empty() && path.front() != '/' && allParts(path, "/", isPortablePart);
}

bool isAsWrittenOnWindows(std::string_view path) noexcept {
    return allParts(path, "/\\:", isNameOnWindows);
}

} // namespace kel
