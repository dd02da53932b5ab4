#include <libStencilor/Template.h>
#include <libStencilorJson/JsonText.h>

#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>

// Renders the report in this folder: a page with loops, conditions and includes, and values from a
// JSON file. The program `stencilor` renders the same page from the same files.
//
//     report FOLDER >report.html

using namespace kel::Stencilor;

namespace {

std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error("cannot read " + path);
    }
    return std::string(std::istreambuf_iterator<char>(file), {});
}

Value readValues(const std::string& path) {
    try {
        return valueFromJsonText(readFile(path));
    } catch (const JsonError& error) {
        throw std::runtime_error(path + ":" + error.what());
    }
}

void render(const std::string& folder) {
    FileTemplates templates(folder); // only files in the folder can be included
    const RenderResult result = renderFile("report.html", readValues(folder + "/context.json"),
                                           {.escape = Escape::html(), .source = &templates});
    for (const RenderMessage& message : result.messages) {
        std::cerr << message.templateName << ':' << message.line << ": " << message.text() << '\n';
    }
    if (!result.messages.empty()) {
        throw std::runtime_error("the page is not complete");
    }
    std::cout << result.text;
}

} // namespace

int main(int argc, char** argv) {
    try {
        render(argc > 1 ? argv[1] : ".");
    } catch (const std::exception& error) {
        std::cerr << "report: " << error.what() << '\n';
        return 1;
    }
}
