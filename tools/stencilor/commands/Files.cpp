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

} // namespace

std::string inputName(const std::string& file) {
    return file == standardStream ? "<stdin>" : file;
}

std::string Files::read(const std::string& file) {
    try {
        if (file == standardStream) {
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
        if (file == standardStream) {
            system::writeStandardOutput(text);
            return;
        }
        if (std::any_of(states_.begin(), states_.end(), [&file](const auto& read) {
                return system::isSameFile(read.first, file);
            })) {
            throw Failure(file + ": the result would replace a file that it is made of");
        }
        system::writeFile(file, text);
    } catch (const std::system_error& error) {
        failAt(file == standardStream ? "<stdout>" : file, error);
    }
}

void Files::waitForChange() const {
    using namespace std::chrono_literals;
    while (!haveChanged()) {
        std::this_thread::sleep_for(100ms);
    }
    std::this_thread::sleep_for(50ms); // what writes the file may not have finished
}

bool Files::haveChanged() const {
    return std::any_of(states_.begin(), states_.end(),
                       [](const auto& read) { return system::stateOf(read.first) != read.second; });
}

} // namespace stencilor
