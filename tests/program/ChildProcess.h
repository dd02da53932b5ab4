#ifndef TESTS_PROGRAM_CHILDPROCESS_H
#define TESTS_PROGRAM_CHILDPROCESS_H

#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace program {

/// The outcome of a program. `status` is its exit status, or 128 plus the number of the signal that
/// ended it.
struct Outcome {
    int status;
    std::string output;
    std::string errors;
};

/// The streams of a child, instead of those of this process.
struct Streams {
    std::string input{};      ///< the bytes on the standard input
    std::string outputFile{}; ///< an existing file to write to; then `Outcome::output` is empty
};

/// The arguments of a call: a list, or a line that is split at spaces. In a line, text in '...'
/// belongs to one argument.
struct Arguments : std::vector<std::string> {
    Arguments(std::initializer_list<std::string> list) : vector(list) {}
    Arguments(std::vector<std::string> list) : vector(std::move(list)) {}
    Arguments(const std::string& line);
    Arguments(const char* line) : Arguments(std::string(line)) {}
};

/// Runs `stencilor` in the working directory and waits for its end.
/// Errors: throws `std::system_error` if it cannot be started.
Outcome runStencilor(const Arguments& arguments, const Streams& streams = {});

/// `stencilor`, running in the working directory until this object is destroyed.
class RunningStencilor {
  public:
    explicit RunningStencilor(const Arguments& arguments);
    RunningStencilor(const RunningStencilor&) = delete;
    RunningStencilor& operator=(const RunningStencilor&) = delete;
    ~RunningStencilor();

    /// What it has written to the standard error stream so far.
    std::string errors() const;

  private:
    struct Child;
    std::unique_ptr<Child> child_;
};

#ifndef _WIN32
/// Runs a command of the shell, in which "$0" is `stencilor`.
Outcome runShell(const std::string& command, const Streams& streams = {});
#endif

} // namespace program

#endif
