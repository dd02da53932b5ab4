#ifndef TOOLS_STENCILOR_COMMANDS_FILES_H
#define TOOLS_STENCILOR_COMMANDS_FILES_H

#include <tools/stencilor/system/System.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace stencilor {

inline constexpr std::string_view standardStream = "-";

/// What messages call something that is read.
std::string inputName(const std::string& file);

/// The files of one run of a command: what the user names, `-` for the standard streams, and what
/// is included. It knows which files were read, or looked for.
/// Errors: what fails throws `Failure`, with the name and the reason.
class Files {
  public:
    std::string read(const std::string& file);

    /// Remembers a file that is about to be read.
    void note(const std::string& path);

    /// Writes a file, wholly or not at all. None that was read is written to.
    void write(const std::string& file, std::string_view text) const;

    /// Returns when a file is another one than it was.
    void waitForChange() const;

  private:
    bool haveChanged() const;

    std::map<std::string, std::optional<system::FileState>> states_;
};

} // namespace stencilor

#endif
