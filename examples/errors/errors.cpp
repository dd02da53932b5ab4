#include <libStencilor/Stencilor.h>
#include <libStencilor/Syntax.h>

#include <algorithm>
#include <iostream>
#include <string>
#include <string_view>

// Tells the author of a template what is wrong with it: where it cannot be read, and which values
// it asks for that are not there.

using namespace kel::Stencilor;

namespace {

/// The line around a fault with a caret below, as compilers show it. Columns count characters.
void showPlace(std::string_view text, std::size_t offset, std::string_view problem) {
    const std::string_view before = text.substr(0, offset);
    const std::size_t lineBreak = before.rfind('\n');
    const std::size_t start = lineBreak == std::string_view::npos ? 0 : lineBreak + 1;
    const std::string_view line = text.substr(start, text.find('\n', start) - start);
    const auto lines = std::count(before.begin(), before.end(), '\n');
    // All bytes but those that go on with a character.
    const auto columns = std::count_if(
        before.begin() + static_cast<std::ptrdiff_t>(start), before.end(),
        [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0u) != 0x80u; });
    std::cout << "letter.txt:" << lines + 1 << ':' << columns + 1 << ": " << problem << '\n'
              << "    " << line << '\n'
              << std::string(4 + static_cast<std::size_t>(columns), ' ') << "^\n";
}

void showFault(std::string_view text, const SyntaxFault& fault) {
    showPlace(text, fault.offset, "expected " + std::string(describe(fault.expected)));
    if (!fault.block.isEmpty()) {
        showPlace(text, fault.block.begin, "the block that is open here");
    }
}

/// What was rendered, or what the author should know instead.
void render(std::string_view text) {
    ContextDictionary context;
    context.insert("name", ContextFactory::buildString("Zo\u00EB"));

    const SyntaxFault fault = findSyntaxFault(text);
    if (fault.isPresent()) {
        showFault(text, fault);
        return;
    }
    kel::String messages;
    const kel::String letter = buildOutput(text, context, messages);
    std::cout << letter << (messages.empty() ? "" : "The letter is not complete:\n") << messages;
}

} // namespace

int main() {
    render("Dear {{ name }},\n");
    render("Dear {{ name }},\nyour order of {{ day }} is on its way.\n");
    render("Dear {{ name }},\n{% if paid %}Gr\u00FC\u00DFe {{ name }!\n{% endif %}");
    render("{% if paid %}\nThank you.");
}
