// Reads templates from the standard input, each terminated by a NUL byte, and reports for each, on
// its own line, whether the engine accepts it.

#include <libStencilor/Stencilor.h>

#include <iostream>
#include <string>

namespace {

bool isAccepted(const std::string& text) {
    kel::String errors;
    buildOutput(text, kel::Stencilor::ContextDictionary(), errors);
    return errors.view().find("Failed to parse input correctly.") == std::string_view::npos;
}

} // namespace

int main() {
    for (std::string text; std::getline(std::cin, text, '\0');) {
        std::cout << (isAccepted(text) ? "accepted" : "rejected") << '\n';
    }
}
