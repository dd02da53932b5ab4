#include <libStencilor/Template.h>

#include <iostream>
#include <string>
#include <string_view>

// Reports errors in a template like a compiler, with locations: why it is rejected, and which
// values are missing.

using namespace kel::Stencilor;

namespace {

/// The line of a message, with a caret below it.
void showPlace(std::string_view text, const RenderMessage& message) {
    const std::size_t lineBreak = text.substr(0, message.range.begin).rfind('\n');
    const std::size_t start = lineBreak == std::string_view::npos ? 0 : lineBreak + 1;
    std::cout << "    " << text.substr(start, text.find('\n', start) - start) << "\n    "
              << std::string(message.column - 1, ' ') << "^\n";
}

void render(const char* text) {
    const Template letter(text, "letter.txt");
    const RenderResult result = letter.render({{"name", "Zo\u00EB"}});
    std::cout << result.text;
    for (const RenderMessage& message : result.messages) {
        std::cout << message.templateName << ':' << message.line << ':' << message.column << ": "
                  << message.text() << '\n';
        showPlace(text, message);
    }
}

} // namespace

int main() {
    render("Dear {{ name }},\n");
    render("Dear {{ name }},\nyour order of {{ day }} is on its way.\n");
    render("Dear {{ name }},\n{% if paid %}Gr\u00FC\u00DFe {{ name }!\n{% endif %}");
    render("{% if paid %}\nThank you.");
}
