#include <libStencilorJson/Json.h>
#include <libStencilorJson/json_text.h>

namespace kel::Stencilor::internal {

bool isValidUtf8(std::string_view text) {
    return findMalformedUtf8(text) == text.size();
}

std::string pointerPart(std::string_view text) {
    std::string result;
    for (const char character : text) {
        if (character == '~' || character == '/') {
            result += character == '~' ? "~0" : "~1";
        } else {
            result += character;
        }
    }
    return result;
}

} // namespace kel::Stencilor::internal
