#ifndef TOOLS_STENCILOR_COMMANDS_FILES_H
#define TOOLS_STENCILOR_COMMANDS_FILES_H

#include <tools/stencilor/system/System.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace stencilor {

inline constexpr std::string_view standardStream = "-";

/// The name of an input in messages.
std::string inputName(const std::string& file);

/// The files of one run of a command: those that the user names, where `-` is a standard stream,
/// and included ones. It remembers which files were read or looked up.
/// Errors: throws `Failure`, with the name and the reason.
class Files {
  public:
    std::string read(const std::string& file);

    /// Remembers a file that is about to be read.
    void note(const std::string& path);

    /// Writes a file, completely or not at all. Refuses to overwrite a file that was read.
    void write(const std::string& file, std::string_view text) const;

    /// Waits until a file has changed.
    void waitForChange() const;

  private:
    bool haveChanged() const;

    std::map<std::string, std::optional<system::FileState>> states_;
};

} // namespace stencilor

#endif
