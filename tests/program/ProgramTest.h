#ifndef TESTS_PROGRAM_PROGRAMTEST_H
#define TESTS_PROGRAM_PROGRAMTEST_H

#include "../support/TemporaryFolder.h"
#include "../support/Test.h"
#include "ChildProcess.h"

namespace program {

/// A test of the program in its own empty working directory.
class ProgramTest : public ::testing::Test {
  protected:
    support::TemporaryFolder folder;

  private:
    support::WorkingFolder inside_{folder.path()};
};

/// The text after the message about wrong usage.
inline std::string helpHint(const std::string& command) {
    return "\nRun 'stencilor " + command + (command.empty() ? "" : " ") + "--help' for usage.\n";
}

inline void expectOutcome(const Outcome& outcome, int status, const std::string& output,
                          const std::string& errors) {
    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(outcome.output, output);
    EXPECT_EQ(outcome.errors, errors);
}

} // namespace program

#endif
