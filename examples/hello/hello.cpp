#include <libStencilor/Template.h>

#include <iostream>

// The minimal host: a template, values, a result.

using namespace kel::Stencilor;

int main() {
    const Template greeting("Hello, {{ name }}!{% if member %} Welcome back.{% endif %}\n");
    const Value values{{"name", "Zo\u00EB"}, {"member", true}};
    std::cout << greeting.render(values).text;
}
