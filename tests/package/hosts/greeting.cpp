#include <libStencilor/Stencilor.h>

#include <iostream>

using namespace kel::Stencilor;

int main() {
    ContextDictionary context;
    context.insert("name", ContextFactory::buildString("world"));
    // Written so that it compiles with each base library, also one whose strings are no bytes.
    std::cout << buildOutput("Hello, {{ name }}!\n", context).getUTF8String().c_str();
}
