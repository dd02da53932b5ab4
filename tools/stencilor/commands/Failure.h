#ifndef TOOLS_STENCILOR_COMMANDS_FAILURE_H
#define TOOLS_STENCILOR_COMMANDS_FAILURE_H

#include <stdexcept>

namespace stencilor {

/// An error that ends the program, such as an unusable file. Its text is the message, without the
/// program's name.
class Failure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// Wrong usage. The message is followed by a reference to the help.
class CallError : public Failure {
  public:
    using Failure::Failure;
};

/// The exit statuses of the program.
enum ExitStatus : int {
    exitClean = 0,
    exitMessages = 1,
    exitFailure = 2,
    exitRejected = 3,
    exitLimit = 4,
};

} // namespace stencilor

#endif
