#include <tools/stencilor/program.h>

int main(int argc, char** argv) {
    return stencilor::runProgram(argc, argv);
}
