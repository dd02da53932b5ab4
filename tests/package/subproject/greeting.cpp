#include <libStencilor/Stencilor.h>

using namespace kel::Stencilor;

int main() {
    ContextDictionary context;
    context.insert("name", ContextFactory::buildString("world"));
    return buildOutput("Hello, {{ name }}!", context) == "Hello, world!" ? 0 : 1;
}
