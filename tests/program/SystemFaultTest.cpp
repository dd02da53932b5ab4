#include "ProgramTest.h"

#ifndef _WIN32

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace program {
namespace {

namespace fs = std::filesystem;

/// One system call of the program that fails, or that a signal interrupts.
struct Fault {
    std::string function;
    int call = 1;
    int error = 0;
    int signal = 0;
};

class SystemFaultTest : public ProgramTest {
  protected:
    SystemFaultTest() {
        folder.writeFile("page.txt", "[{{ a }}{% include \"part.txt\" %}]");
        folder.writeFile("part.txt", "part");
        folder.writeFile("values.json", R"({"a":"x"})");
        folder.writeFile("out.txt", "before");
    }

    /// Runs `stencilor` with a fault. Returns nothing if the fault did not occur.
    static std::optional<Outcome> run(const Fault& fault, const std::string& arguments) {
        fs::remove("mark");
        const Outcome outcome = runShell("exec env SYSTEM_FAULT=" + fault.function +
                                         " SYSTEM_FAULT_CALL=" + std::to_string(fault.call) +
                                         " SYSTEM_FAULT_ERROR=" + std::to_string(fault.error) +
                                         " SYSTEM_FAULT_SIGNAL=" + std::to_string(fault.signal) +
                                         " SYSTEM_FAULT_MARK=mark " +
                                         "ASAN_OPTIONS=verify_asan_link_order=0:\"$ASAN_OPTIONS\" "
                                         "LD_PRELOAD=" SYSTEM_FAULT_LIBRARY " \"$0\" " +
                                         arguments);
        return fs::remove("mark") ? std::optional(outcome) : std::nullopt;
    }

    /// True if the working directory only contains the files of the test.
    static bool nothingIsLeft() {
        return std::all_of(fs::directory_iterator("."), fs::directory_iterator(),
                           [](const fs::directory_entry& entry) {
                               return !entry.path().filename().string().starts_with(".stencilor");
                           });
    }
};

const char* const functions[] = {"close",    "dup",      "faccessat", "fchmod", "fchown", "fstat",
                                 "fsync",    "lstat",    "open",      "openat", "poll",   "read",
                                 "readlink", "realpath", "rename",    "stat",   "unlink", "write"};

TEST_F(SystemFaultTest, LeavesAFileThatIsOldOrNew) {
    int faults = 0;
    for (const std::string function : functions) {
        std::optional<Outcome> outcome;
        for (int call = 1; call == 1 || outcome; ++call) {
            SCOPED_TRACE(function + " " + std::to_string(call));
            folder.writeFile("out.txt", "before");
            outcome = run({function, call, EIO}, "render page.txt values.json -o out.txt");
            if (!outcome) {
                continue;
            }
            ++faults;
            const std::string output = support::readFile("out.txt");
            EXPECT_TRUE(nothingIsLeft());
            switch (outcome->status) {
            case 0:
                EXPECT_EQ(output, "[xpart]");
                EXPECT_EQ(outcome->errors, "");
                break;
            case 1: // the included file could not be read
                EXPECT_EQ(output, "[x]");
                EXPECT_TRUE(outcome->errors.starts_with("page.txt:1:21: warning: included file "));
                break;
            default:
                EXPECT_EQ(outcome->status, 2);
                EXPECT_EQ(output, "before");
                EXPECT_TRUE(outcome->errors.starts_with("stencilor: ")) << outcome->errors;
            }
        }
    }
    EXPECT_GT(faults, 10);
}

TEST_F(SystemFaultTest, IsReportedIfTheStandardOutputIsNotWritten) {
    folder.writeFile("page.txt", "text");
    for (const std::string function : {"write", "dup", "close"}) {
        int reported = 0;
        for (int call = 1; const auto outcome = run({function, call, EDQUOT}, "render page.txt");
             ++call) {
            SCOPED_TRACE(function + " " + std::to_string(call));
            if (outcome->status != 0) { // a file that was only read may be left open
                ++reported;
                EXPECT_EQ(outcome->status, 2);
                EXPECT_EQ(outcome->errors, "stencilor: <stdout>: Disk quota exceeded\n");
            }
        }
        EXPECT_EQ(reported, 1) << function;
    }
}

// The call that creates the temporary file depends on what else the standard library opens.
TEST_F(SystemFaultTest, IsAvoidedIfTheNameOfATemporaryFileIsTaken) {
    int made = 0;
    for (int call = 1;
         const auto outcome = run({"open", call, EEXIST}, "render page.txt values.json -o out.txt");
         ++call) {
        if (outcome->status == 0) {
            ++made;
            EXPECT_EQ(support::readFile("out.txt"), "[xpart]");
        }
    }
    EXPECT_EQ(made, 1);
    EXPECT_TRUE(nothingIsLeft());
}

TEST_F(SystemFaultTest, IsAvoidedByARetry) {
    const struct {
        const char* name;
        Fault fault;
    } cases[] = {
        {"a write interrupted by a signal", {"write", 1, EINTR}},
        {"a write that would block", {"write", 1, EAGAIN}},
        {"a read interrupted by a signal", {"read", 1, EINTR}},
        {"a read that would block", {"read", 1, EAGAIN}},
        {"a file system that cannot flush", {"fsync", 1, EINVAL}},
    };
    for (const auto& [name, fault] : cases) {
        SCOPED_TRACE(name);
        folder.writeFile("out.txt", "before");
        const auto outcome = run(fault, "render page.txt values.json -o out.txt");
        ASSERT_TRUE(outcome);
        expectOutcome(*outcome, 0, "", "");
        EXPECT_EQ(support::readFile("out.txt"), "[xpart]");
        EXPECT_TRUE(nothingIsLeft());
    }
}

TEST_F(SystemFaultTest, LeavesNoTemporaryFileIfASignalEndsTheProgram) {
    for (const int signal : {SIGHUP, SIGINT, SIGTERM, SIGQUIT, SIGALRM, SIGUSR1, SIGUSR2, SIGPIPE,
                             SIGXCPU, SIGVTALRM, SIGPROF}) {
        for (const char* const function : {"write", "fsync", "rename"}) {
            SCOPED_TRACE(std::string(function) + " " + std::to_string(signal));
            folder.writeFile("out.txt", "before");
            const auto outcome =
                run({function, 1, 0, signal}, "render page.txt values.json -o out.txt");
            ASSERT_TRUE(outcome);
            expectOutcome(*outcome, 128 + signal, "", "");
            EXPECT_EQ(support::readFile("out.txt"), "[xpart]");
            EXPECT_TRUE(nothingIsLeft());
        }
    }
}

TEST_F(SystemFaultTest, FindsATemporaryFileThatNobodyElseCanOpen) {
    fs::permissions("out.txt", fs::perms::owner_read | fs::perms::owner_write);
    ASSERT_TRUE(run({"fchown", 1, 0, SIGKILL}, "render page.txt values.json -o out.txt"));
    const auto left =
        std::find_if(fs::directory_iterator("."), fs::directory_iterator(),
                     [](const fs::directory_entry& entry) {
                         return entry.path().filename().string().starts_with(".stencilor");
                     });
    ASSERT_NE(left, fs::directory_iterator());
    EXPECT_EQ(left->status().permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

/// A file of another user.
class SharedFileTest : public SystemFaultTest {
  protected:
    static constexpr gid_t ownGroup = 64001;
    static constexpr gid_t sharedGroup = 64002;

    void SetUp() override {
        if (::geteuid() != 0) {
            GTEST_SKIP() << "only root can switch to another user";
        }
        fs::permissions(".", fs::perms::all);
        if (runShell(asUser + "\"$0\" --version").status != 0) {
            GTEST_SKIP() << "another user cannot start the program";
        }
    }

    const std::string asUser = "exec setpriv --reuid=64001 --regid=64001 --groups=64002 ";
};

TEST_F(SharedFileTest, KeepsThePermissionsThatItsNewOwnerMayHave) {
    const struct {
        const char* name;
        uid_t owner;
        gid_t group;
        mode_t before;
        gid_t newGroup;
        mode_t after;
    } cases[] = {
        {"a file of a group of the user", 0, sharedGroup, 0664, sharedGroup, 0664},
        {"with the set-group-ID bit", 0, sharedGroup, 02775, sharedGroup, 02775},
        {"with the set-user-ID bit", 0, sharedGroup, 04775, sharedGroup, 0775},
        {"a file of another group", 0, 0, 0646, ownGroup, 0646},
        {"with both bits", 0, 0, 06757, ownGroup, 0757},
        {"whose group has more rights than others", 0, 0, 0676, ownGroup, 0666},
        {"the user's own file with both bits", 64001, ownGroup, 06755, ownGroup, 06755},
    };
    for (const auto& [name, owner, group, before, newGroup, after] : cases) {
        SCOPED_TRACE(name);
        folder.writeFile("out.txt", "before");
        ASSERT_EQ(::chown("out.txt", owner, group), 0);
        ASSERT_EQ(::chmod("out.txt", before), 0);
        expectOutcome(runShell(asUser + "\"$0\" render page.txt values.json -o out.txt"), 0, "",
                      "");
        struct stat status = {};
        ASSERT_EQ(::stat("out.txt", &status), 0);
        EXPECT_EQ(status.st_uid, 64001u);
        EXPECT_EQ(status.st_gid, newGroup);
        EXPECT_EQ(status.st_mode & 07777u, after);
    }
}

} // namespace
} // namespace program

#endif
