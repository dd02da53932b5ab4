#ifndef TOOLS_STENCILOR_COMMANDS_ENGINEMESSAGES_H
#define TOOLS_STENCILOR_COMMANDS_ENGINEMESSAGES_H

#include <string>
#include <string_view>
#include <vector>

namespace stencilor {

/// Divides the engine's error text into its messages, without line breaks. The engine only appends
/// them to each other, and not all of them end in a line break. The views are parts of `text`.
std::vector<std::string_view> splitMessages(std::string_view text);

/// A message with at most 200 code points of what it quotes.
std::string shortenQuotation(std::string_view message);

/// True for the error text of a template that does not parse. No other text is the same: names in
/// messages hold no spaces.
bool isRejection(std::string_view text);

} // namespace stencilor

#endif
