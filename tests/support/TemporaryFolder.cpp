#include "TemporaryFolder.h"

#include <atomic>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

#ifdef _WIN32
#include <process.h>
#else
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace support {

namespace {

int processNumber() {
#ifdef _WIN32
    return ::_getpid();
#else
    return ::getpid();
#endif
}

std::filesystem::path fromUtf8(std::string_view name) {
    return std::filesystem::path(std::u8string(name.begin(), name.end()));
}

} // namespace

TemporaryFolder::TemporaryFolder() {
    static std::atomic<int> made = 0;
    const std::string name =
        "stencilor-test-" + std::to_string(processNumber()) + "-" + std::to_string(++made);
    folder_ = std::filesystem::canonical(std::filesystem::temp_directory_path()) / name;
    std::filesystem::remove_all(folder_);
    if (!std::filesystem::create_directory(folder_)) {
        throw std::runtime_error("cannot make the folder " + folder_.string());
    }
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

std::string TemporaryFolder::path(std::string_view name) const {
    const std::u8string path =
        (name.empty() ? folder_ : folder_ / fromUtf8(name)).generic_u8string();
    return std::string(path.begin(), path.end());
}

void TemporaryFolder::writeFile(std::string_view name, std::string_view bytes) const {
    std::ofstream file(folder_ / fromUtf8(name), std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!file.flush()) {
        throw std::runtime_error("cannot write the file " + path(name));
    }
}

void TemporaryFolder::makeFolder(std::string_view name) const {
    std::filesystem::create_directories(folder_ / fromUtf8(name));
}

void TemporaryFolder::writeSparseFile(std::string_view name, std::uint64_t size) const {
    writeFile(name, {});
    std::filesystem::resize_file(folder_ / fromUtf8(name), size);
}

bool TemporaryFolder::makeLink(std::string_view name, std::string_view target) const {
#ifdef _WIN32
    static_cast<void>(name);
    static_cast<void>(target);
    return false;
#else
    std::filesystem::create_symlink(fromUtf8(target), folder_ / fromUtf8(name));
    return true;
#endif
}

bool TemporaryFolder::makePipe(std::string_view name) const {
#ifdef _WIN32
    static_cast<void>(name);
    return false;
#else
    if (::mkfifo(path(name).c_str(), 0600) != 0) {
        throw std::runtime_error("cannot make the pipe " + path(name));
    }
    return true;
#endif
}

WorkingFolder::WorkingFolder(const std::string& folder) : former_(std::filesystem::current_path()) {
    std::filesystem::current_path(fromUtf8(folder));
}

WorkingFolder::~WorkingFolder() {
    std::error_code ignored;
    std::filesystem::current_path(former_, ignored);
}

std::string readFile(const std::string& path) {
    std::ifstream file(fromUtf8(path), std::ios::binary);
    if (!file) {
        throw std::runtime_error("cannot read the file " + path);
    }
    return std::string(std::istreambuf_iterator<char>(file), {});
}

} // namespace support
