#ifndef TOOLS_STENCILOR_PROGRAM_H
#define TOOLS_STENCILOR_PROGRAM_H

namespace stencilor {

/// Runs the command that the arguments of `main` name. Returns the exit status.
int runProgram(int argc, char** argv);

} // namespace stencilor

#endif
