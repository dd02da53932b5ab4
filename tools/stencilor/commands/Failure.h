#ifndef TOOLS_STENCILOR_COMMANDS_FAILURE_H
#define TOOLS_STENCILOR_COMMANDS_FAILURE_H

#include <stdexcept>

namespace stencilor {

/// What ends the program: a wrong call, or a file that cannot be used. Its text is the message,
/// without the program's name.
class Failure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// How the program ends, as scripts see it.
enum ExitStatus : int {
    exitClean = 0,
    exitMessages = 1,
    exitFailure = 2,
    exitRejected = 3,
};

} // namespace stencilor

#endif
