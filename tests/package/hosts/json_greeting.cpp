#include <libStencilorJson/Json.h>

#include <iostream>

using namespace kel::Stencilor;

int main() {
    const nlohmann::json json = {{"user", {{"name", "world"}}}};
    std::cout << buildOutput("Hello, {{ user.name }}", Context(valueFromJson(json)));
    try {
        valueFromJsonText("{\"user\":\n}");
    } catch (const JsonError& error) {
        std::cout << "! " << error.what() << '\n';
    }
}
