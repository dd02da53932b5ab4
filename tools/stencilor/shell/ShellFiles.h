#ifndef TOOLS_STENCILOR_SHELL_SHELLFILES_H
#define TOOLS_STENCILOR_SHELL_SHELLFILES_H

#include <tools/stencilor/CommandTable.h>

#include <string>

namespace stencilor {

std::string bashCompletion(const CommandTable& table);
std::string zshCompletion(const CommandTable& table);
std::string fishCompletion(const CommandTable& table);
std::string manualPage(const CommandTable& table);

} // namespace stencilor

#endif
