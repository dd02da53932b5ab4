#ifndef TOOLS_STENCILOR_PROGRAM_H
#define TOOLS_STENCILOR_PROGRAM_H

namespace stencilor {

/// Runs the command given by the arguments of `main`, and returns the exit status.
int runProgram(int argc, char** argv);

} // namespace stencilor

#endif
