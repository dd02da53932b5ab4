#include <libKel/StandardError.h>
#include <libKel/SystemFiles.h>

// A system without files and without a standard error stream, such as a browser.

namespace kel {

std::optional<SystemPath> resolveDirectory(const String&) {
    return std::nullopt;
}

std::optional<FileState> findFile(const SystemPath*, const String&) {
    return std::nullopt;
}

Handle::~Handle() = default;

OpenFile::OpenFile(const SystemPath*, const String&) : handle_(0) {}

std::optional<std::uint64_t> OpenFile::read(unsigned char*, std::uint64_t) const {
    return std::nullopt;
}

std::string lineOf(const LogRecord&, std::chrono::system_clock::time_point) {
    return {};
}

bool writeToStandardError(std::string_view) {
    return false;
}

} // namespace kel
