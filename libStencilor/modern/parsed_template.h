#ifndef LIBSTENCILOR_MODERN_PARSED_TEMPLATE_H
#define LIBSTENCILOR_MODERN_PARSED_TEMPLATE_H

#include <libKel/String.h>
#include <libStencilor/Syntax.h>
#include <libStencilor/Template.h>
#include <libStencilor/modern/name_table.h>
#include <libStencilor/template/syntax_tree.h>

#include <memory>
#include <optional>

namespace kel::Stencilor::internal {

/// A position in a template.
struct node_place {
    SyntaxRange range{};
    unsigned int line = 0;
    unsigned int column = 0;
};

/// The data that copies of a `Template` share.
/// Threads: immutable.
struct parsed_template {
    parsed_template(String source, String called);

    const String text;
    const String name;
    syntax_tree tree;
    SyntaxFault fault;
    node_place faultPlace;
    std::optional<name_table> names; // of a well-formed template
    bool isUtf8;                     // true if the whole text is valid UTF-8
};

/// The library's access to the contents of a template.
struct template_access {
    static const parsed_template& parsed(const Template& made) noexcept { return *made.parsed_; }
};

/// The position of the name or path of a record.
inline node_place placeOf(const name_use& use) noexcept {
    return {use.range(), use.line, use.column};
}

/// The position of a text node. Takes time linear in the size of the template.
node_place placeOfText(const parsed_template& in, const content& text);

} // namespace kel::Stencilor::internal

#endif
