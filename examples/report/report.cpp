#include <libKel/FileSystem.h>
#include <libStencilorJson/JsonText.h>

#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>

// Renders the report in this folder: a page of loops, conditions and included parts, with values
// from a JSON file. The program `stencilor` makes the same page of the same files.
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
    // From here on templates include what is in the folder, and nothing else.
    if (!kel::FileSystem::setRoot(folder)) {
        throw std::runtime_error(folder + " is no folder");
    }
    const Context context(readValues(folder + "/context.json"));
    kel::String messages;
    const kel::String page = buildOutput(readFile(folder + "/report.html"), context, messages);
    if (!messages.empty()) {
        throw std::runtime_error(messages.str());
    }
    std::cout << page;
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
