#include <tools/stencilor/commands/Failure.h>
#include <tools/stencilor/commands/Files.h>
#include <tools/stencilor/system/System.h>

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
        return file == standardStream ? system::readStandardInput() : system::readFile(file);
    } catch (const std::system_error& error) {
        failAt(inputName(file), error);
    }
}

void writeOutput(const std::string& file, std::string_view text) {
    try {
        if (file == standardStream) {
            system::writeStandardOutput(text);
        } else {
            system::writeFile(file, text);
        }
    } catch (const std::system_error& error) {
        failAt(file == standardStream ? "<stdout>" : file, error);
    }
}

} // namespace stencilor
