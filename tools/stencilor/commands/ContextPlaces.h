#ifndef TOOLS_STENCILOR_COMMANDS_CONTEXTPLACES_H
#define TOOLS_STENCILOR_COMMANDS_CONTEXTPLACES_H

#include <libStencilor/Syntax.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace stencilor {

/// Where names are in a JSON text, each the first time; nothing where one is not. `names` are as
/// templates have them: `user.name`, and `items.title` for a member of the elements of a list.
///
/// Cost: linear in the text and the names.
/// @param text must be well formed
std::vector<std::optional<kel::Stencilor::SyntaxRange>>
findNames(std::string_view text, const std::vector<std::string>& names);

} // namespace stencilor

#endif
