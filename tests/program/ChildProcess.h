#ifndef TESTS_PROGRAM_CHILDPROCESS_H
#define TESTS_PROGRAM_CHILDPROCESS_H

#include <memory>
#include <string>
#include <vector>

namespace program {

/// What a program left behind. `status` is its exit status; 128 and the signal's number where one
/// ended it.
struct Outcome {
    int status;
    std::string output;
    std::string errors;
};

/// Where a child's streams come from and lead to, instead of to this process.
struct Streams {
    std::string input{};      ///< the bytes on the standard input
    std::string outputFile{}; ///< an existing file to write to; then `Outcome::output` is empty
};

/// Runs `stencilor` in the working directory and waits for its end.
/// Errors: throws `std::system_error` where it cannot be started.
Outcome runStencilor(const std::vector<std::string>& arguments, const Streams& streams = {});

/// `stencilor` in the working directory, from which nothing is read. It is ended with this object.
class RunningStencilor {
  public:
    explicit RunningStencilor(const std::vector<std::string>& arguments);
    RunningStencilor(const RunningStencilor&) = delete;
    RunningStencilor& operator=(const RunningStencilor&) = delete;
    ~RunningStencilor();

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
