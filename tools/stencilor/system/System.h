#ifndef TOOLS_STENCILOR_SYSTEM_SYSTEM_H
#define TOOLS_STENCILOR_SYSTEM_SYSTEM_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What depends on the system: arguments, streams and files. Text and paths are always UTF-8, and
// bytes are passed unchanged. Failures throw `std::system_error`.

namespace stencilor::system {

/// The maximum size of text in the engine. Larger files are not read: "File too large".
inline constexpr std::uint64_t longestText = 0xFFFF'FFFF;

/// Initializes the process, and returns its arguments without the program's name.
std::vector<std::string> start(int argc, char** argv);

std::string readFile(const std::string& path);
std::string readStandardInput();

/// Waits for bytes on the standard input, and reads at most `size` of them. Returns their number,
/// which is 0 at the end.
std::size_t readStandardInput(char* data, std::size_t size);

void writeStandardOutput(std::string_view text);

/// Writes to the standard error stream. Failures are ignored, because they cannot be reported.
void writeStandardError(std::string_view text) noexcept;

/// True if a stream is a terminal that shows colors, which are enabled if necessary.
bool showsColors(bool standardError);

/// The state of a file, for detecting changes.
struct FileState {
    std::uint64_t size = 0;
    std::int64_t modified = 0; ///< in a unit of the system
    std::uint64_t index = 0;   ///< distinguishes the files of a volume, if known

    friend bool operator==(const FileState&, const FileState&) = default;
};

/// Nothing if there is no regular file.
std::optional<FileState> stateOf(const std::string& path);

/// True if both paths lead to the same regular file.
bool isSameFile(const std::string& path, const std::string& other);

/// The folder of `path`, or `.`.
std::string folderOf(const std::string& path);

/// A path that is the same for all paths that lead to the same file, which need not exist.
std::string identityOf(const std::string& path);

/// A path as a URI; relative if the path is.
std::string uriOf(const std::string& path);

/// The path of a file that a URI names; nothing for other URIs.
std::optional<std::string> pathOfUri(std::string_view uri);

bool isAbsolute(const std::string& path);

/// The sorted names of the files and folders in a folder; those of folders end with `/`. None if it
/// cannot be read.
std::vector<std::string> namesIn(const std::string& folder);

/// Replaces the content of the file, completely or not at all: the content is written to a
/// temporary file in the same folder, which then replaces the file. If the path is a symbolic link,
/// its target is replaced. A file without write permission is not replaced. On POSIX systems, the
/// new file keeps the permissions, and the owner and group as far as the system allows. Files that
/// are not regular are written to directly, as is the file that the standard output is redirected
/// to. Signals that end the program, and Ctrl+C on Windows, are delayed until the file has been
/// replaced.
void writeFile(const std::string& path, std::string_view content);

} // namespace stencilor::system

#endif
