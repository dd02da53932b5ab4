#include <libStencilor/Stencilor.h>

#include <iostream>

using namespace kel::Stencilor;

int main() {
    ContextDictionary context;
    context.insert("name", ContextFactory::buildString("world"));
    // Compiles with any base library, even one whose strings do not consist of bytes.
    std::cout << buildOutput("Hello, {{ name }}!\n", context).getUTF8String().c_str();
}
