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

/// A wrong call, after which the help is pointed to.
class CallError : public Failure {
  public:
    using Failure::Failure;
};

/// How the program ends, as scripts see it.
enum ExitStatus : int {
    exitClean = 0,
    exitMessages = 1,
    exitFailure = 2,
    exitRejected = 3,
    exitLimit = 4,
};

} // namespace stencilor

#endif
