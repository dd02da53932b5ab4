#ifndef TOOLS_STENCILOR_COMMANDS_CONTEXTPLACES_H
#define TOOLS_STENCILOR_COMMANDS_CONTEXTPLACES_H

#include <libStencilor/Syntax.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace stencilor {

/// Finds the first place of each name in a JSON text, or nothing. `names` are written as in
/// templates: `user.name`, and `items.title` for a member of list elements.
///
/// Cost: linear in the text and the names.
/// @param text must be well formed
std::vector<std::optional<kel::Stencilor::SyntaxRange>>
findNames(std::string_view text, const std::vector<std::string>& names);

} // namespace stencilor

#endif
