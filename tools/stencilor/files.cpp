#include <tools/stencilor/failure.h>
#include <tools/stencilor/files.h>
#include <tools/stencilor/platform.h>
#include <tools/stencilor/shown_text.h>

#include <system_error>

namespace stencilor {

namespace {

[[noreturn]] void failAt(const std::string& name, const std::system_error& error) {
    throw Failure(name + ": " + error.code().message());
}

} // namespace

std::string inputName(const std::string& file) {
    return file == standardStream ? "<stdin>" : file;
}

std::string readInput(const std::string& file) {
    try {
        return file == standardStream ? platform::readStandardInput() : platform::readFile(file);
    } catch (const std::system_error& error) {
        failAt(inputName(file), error);
    }
}

void writeOutput(const std::string& file, std::string_view text) {
    try {
        if (file == standardStream) {
            platform::writeStandardOutput(text);
        } else {
            platform::writeFile(file, text);
        }
    } catch (const std::system_error& error) {
        failAt(file == standardStream ? "<stdout>" : file, error);
    }
}

void printError(std::string_view text) {
    platform::writeStandardError("stencilor: " + showText(text) + "\n");
}

} // namespace stencilor
