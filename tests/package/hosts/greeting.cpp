#include <libStencilor/Stencilor.h>

#include <iostream>

using namespace kel::Stencilor;

int main() {
    ContextDictionary context;
    context.insert("name", ContextFactory::buildString("world"));
    std::cout << buildOutput("Hello, {{ name }}!\n", context);
}
