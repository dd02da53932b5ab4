#include "target.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

// Runs a fuzz target on the given files, and on all files in the given folders. It is built with
// every compiler, so that previous findings are tested everywhere.

namespace {

namespace fs = std::filesystem;

/// The files of `path`, sorted by name. It is an error if there are none, because a test without
/// inputs must not pass.
std::vector<fs::path> filesOf(const fs::path& path) {
    if (!fs::is_directory(path)) {
        return {path};
    }
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(path)) {
        if (entry.is_regular_file()) {
            files.push_back(entry.path());
        }
    }
    if (files.empty()) {
        throw std::runtime_error(path.string() + ": there is no file in this folder");
    }
    std::sort(files.begin(), files.end());
    return files;
}

/// A block of exactly the file's size, so that the address sanitizer detects any read past its end.
std::vector<std::uint8_t> bytesOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(file), {});
    if (!file) {
        throw std::runtime_error(path.string() + ": cannot read the file");
    }
    return std::vector<std::uint8_t>(bytes.begin(), bytes.end());
}

void replay(const fs::path& path) {
    for (const fs::path& file : filesOf(path)) {
        const std::vector<std::uint8_t> bytes = bytesOf(file);
        // Printed before the test, so that the log of a crash shows the input.
        std::cout << file.string() << std::endl;
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::cerr << "replay: give files, or folders with files\n";
        return 2;
    }
    try {
        std::for_each(argv + 1, argv + argc, replay);
        return 0;
    } catch (const std::exception& problem) {
        std::cerr << "replay: " << problem.what() << '\n';
        return 1;
    }
}
