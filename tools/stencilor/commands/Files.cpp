#include <tools/stencilor/commands/Failure.h>
#include <tools/stencilor/commands/Files.h>

#include <algorithm>
#include <chrono>
#include <system_error>
#include <thread>

namespace stencilor {

namespace {

[[noreturn]] void failAt(const std::string& name, const std::system_error& error) {
    throw Failure(name + ": " + error.code().message());
}

std::string outputName(const std::string& file) {
    return file == standardStream ? "<stdout>" : file;
}

} // namespace

std::string inputName(const std::string& file) {
    return file == standardStream ? "<stdin>" : file;
}

std::string Files::read(const std::string& file) {
    try {
        if (file == standardStream) {
            note("/dev/stdin"); // which is a file if the input is redirected
            return system::readStandardInput();
        }
        note(file);
        return system::readFile(file);
    } catch (const std::system_error& error) {
        failAt(inputName(file), error);
    }
}

void Files::note(const std::string& path) {
    if (const auto [state, isNew] = states_.try_emplace(path); isNew) {
        state->second = system::stateOf(path);
    }
}

void Files::write(const std::string& file, std::string_view text) const {
    try {
        const std::string path = file == standardStream ? "/dev/stdout" : file;
        if (std::any_of(states_.begin(), states_.end(), [&path](const auto& read) {
                return system::isSameFile(read.first, path);
            })) {
            throw Failure(outputName(file) + ": the output would overwrite an input file");
        }
        if (file == standardStream) {
            system::writeStandardOutput(text);
        } else {
            system::writeFile(file, text);
        }
    } catch (const std::system_error& error) {
        failAt(outputName(file), error);
    }
}

void Files::waitForChange() const {
    using namespace std::chrono_literals;
    while (!haveChanged()) {
        std::this_thread::sleep_for(100ms);
    }
    std::this_thread::sleep_for(50ms); // the writer may not have finished
}

bool Files::haveChanged() const {
    return std::any_of(states_.begin(), states_.end(),
                       [](const auto& read) { return system::stateOf(read.first) != read.second; });
}

} // namespace stencilor
