#include <libStencilor/Template.h>

#include <iostream>
#include <string>
#include <string_view>

// Shows the author of a template what is wrong with it, and where, as compilers do: why it is
// rejected, and which values it asks for that are not there.

using namespace kel::Stencilor;

namespace {

/// The line that a message is about, with a caret below.
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
