#include <tools/stencilor/CommandParser.h>
#include <tools/stencilor/Program.h>
#include <tools/stencilor/commands/Messages.h>
#include <tools/stencilor/system/System.h>

namespace stencilor {

int runProgram(int argc, char** argv) {
    return reportFailure([argc, argv] { return runCall(system::start(argc, argv)); });
}

} // namespace stencilor
