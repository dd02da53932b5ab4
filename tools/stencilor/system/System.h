#ifndef TOOLS_STENCILOR_SYSTEM_SYSTEM_H
#define TOOLS_STENCILOR_SYSTEM_SYSTEM_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What differs between the systems: arguments, streams and files. Text and paths are UTF-8 on all
// of them, and no byte is changed on its way. What fails throws `std::system_error`.

namespace stencilor::system {

/// The engine's texts are no longer. What has more bytes is not read: "File too large".
inline constexpr std::uint64_t longestText = 0xFFFF'FFFF;

/// Prepares the process, and returns its arguments without the program's name.
std::vector<std::string> start(int argc, char** argv);

std::string readFile(const std::string& path);
std::string readStandardInput();

/// Waits for some bytes on the standard input, and reads at most `size`. Returns how many; 0 at the
/// end.
std::size_t readStandardInput(char* data, std::size_t size);

void writeStandardOutput(std::string_view text);

/// Writes to the standard error stream. Where that fails, there is nowhere to report it.
void writeStandardError(std::string_view text) noexcept;

/// Whether a stream leads to a terminal that shows colours, which it is made to do.
bool showsColors(bool standardError);

/// What shows that a file has changed.
struct FileState {
    std::uint64_t size = 0;
    std::int64_t modified = 0; ///< in units of the system
    std::uint64_t index = 0;   ///< differs between files of one volume, as far as it is known

    friend bool operator==(const FileState&, const FileState&) = default;
};

/// Nothing where there is no file.
std::optional<FileState> stateOf(const std::string& path);

/// True if both paths lead to the same regular file.
bool isSameFile(const std::string& path, const std::string& other);

/// The folder of `path`; `.` where it names none.
std::string folderOf(const std::string& path);

/// A path that is the same for all paths that lead to the same file.
std::string identityOf(const std::string& path);

/// A path as a URI, relative where the path is.
std::string uriOf(const std::string& path);

/// The path of a file that a URI names; nothing for other URIs.
std::optional<std::string> pathOfUri(std::string_view uri);

bool isAbsolute(const std::string& path);

/// The names of the files in a folder, and of its folders with a `/` after them, sorted; none where
/// it cannot be read.
std::vector<std::string> namesIn(const std::string& folder);

/// Makes `content` the content of the file, wholly or not at all: it is written to a temporary file
/// in the same folder, which then takes the file's place. Through a symbolic link the file that it
/// leads to is replaced. A file that may not be written is not replaced; on POSIX systems one that
/// is replaced keeps its permissions, and its owner and group as far as the system allows. What is
/// not a regular file is written to directly, and so is what the standard output is redirected to.
/// A signal that ends the program waits until the file is replaced; so does Ctrl+C on Windows.
void writeFile(const std::string& path, std::string_view content);

} // namespace stencilor::system

#endif
