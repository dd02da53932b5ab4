#include <libStencilor/Stencilor.h>

#include <iostream>

// The least that a host does: values, a template, a text.

using namespace kel::Stencilor;

int main() {
    ContextDictionary context; // owns the values below
    context.insert("name", ContextFactory::buildString("Zo\u00EB"));
    context.insert("member", ContextFactory::buildBoolean(true));

    std::cout << buildOutput("Hello, {{ name }}!{% if member %} Welcome back.{% endif %}\n",
                             context);
}
