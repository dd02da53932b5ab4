#include <tools/stencilor/Program.h>

int main(int argc, char** argv) {
    return stencilor::runProgram(argc, argv);
}
