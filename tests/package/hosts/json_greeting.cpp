#include <libStencilorJson/Json.h>

#include <iostream>

using namespace kel::Stencilor;

int main() {
    const nlohmann::json values = {{"user", {{"name", "world"}}}};
    std::cout << buildOutput("Hello, {{ user.name }}", *contextFromJson(values));
    try {
        contextFromJsonText("{\"user\":\n}");
    } catch (const JsonError& error) {
        std::cout << "! " << error.what() << '\n';
    }
}
