#include "ChildProcess.h"

#include "../support/TemporaryFolder.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#endif

namespace program {

namespace {

// Made absolute before any test leaves the working directory.
const std::filesystem::path stencilor = std::filesystem::absolute(STENCILOR_PROGRAM);

/// The files that replace the streams of a child. Pipes would have to be read and written at the
/// same time.
class StreamFiles {
  public:
    explicit StreamFiles(const Streams& streams)
        : output(streams.outputFile.empty() ? folder_.path("output") : streams.outputFile),
          ownOutput_(streams.outputFile.empty()) {
        folder_.writeFile("input", streams.input);
        folder_.writeFile("output", {});
        folder_.writeFile("errors", {});
    }

    Outcome outcome(int status) const {
        return {status, ownOutput_ ? support::readFile(output) : "", support::readFile(errors)};
    }

  private:
    support::TemporaryFolder folder_;

  public:
    const std::string input = folder_.path("input");
    const std::string output;
    const std::string errors = folder_.path("errors");

  private:
    bool ownOutput_;
};

#ifdef _WIN32

[[noreturn]] void fail() {
    throw std::system_error(static_cast<int>(::GetLastError()), std::system_category());
}

std::wstring wide(const std::string& text) {
    return std::filesystem::path(std::u8string(text.begin(), text.end())).native();
}

class Handle {
  public:
    explicit Handle(HANDLE handle) : handle_(handle) {
        if (handle_ == INVALID_HANDLE_VALUE) {
            fail();
        }
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() { ::CloseHandle(handle_); }

    HANDLE get() const { return handle_; }

  private:
    HANDLE handle_;
};

HANDLE openForChild(const std::string& path, DWORD access) {
    SECURITY_ATTRIBUTES inherited = {sizeof(inherited), nullptr, TRUE};
    return ::CreateFileW(wide(path).c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                         OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
}

/// Quotes an argument for the C run-time, in which backslashes are only special before quotes.
std::wstring quoted(const std::wstring& argument) {
    std::wstring result = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t character : argument) {
        if (character == L'"') {
            result.append(backslashes + 1, L'\\');
        }
        backslashes = character == L'\\' ? backslashes + 1 : 0;
        result += character;
    }
    result.append(backslashes, L'\\');
    return result + L"\"";
}

/// Starts the program. Returns the handle of its process.
HANDLE start(const std::vector<std::string>& arguments, const StreamFiles& files) {
    const Handle input(openForChild(files.input, GENERIC_READ));
    const Handle output(openForChild(files.output, GENERIC_WRITE));
    const Handle errors(openForChild(files.errors, GENERIC_WRITE));
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = input.get();
    startup.hStdOutput = output.get();
    startup.hStdError = errors.get();

    std::wstring commandLine = quoted(stencilor.native());
    for (const std::string& argument : arguments) {
        commandLine += L" " + quoted(wide(argument));
    }
    PROCESS_INFORMATION child = {};
    if (::CreateProcessW(stencilor.c_str(), commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr,
                         nullptr, &startup, &child) == 0) {
        fail();
    }
    const Handle thread(child.hThread);
    return child.hProcess;
}

Outcome run(const std::vector<std::string>& arguments, const Streams& streams) {
    const StreamFiles files(streams);
    const Handle process(start(arguments, files));
    DWORD status = 0;
    ::WaitForSingleObject(process.get(), INFINITE);
    if (::GetExitCodeProcess(process.get(), &status) == 0) {
        fail();
    }
    return files.outcome(static_cast<int>(status));
}

#else

void check(int error) {
    if (error != 0) {
        throw std::system_error(error, std::generic_category());
    }
}

class FileActions {
  public:
    FileActions() { check(::posix_spawn_file_actions_init(&actions_)); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;
    ~FileActions() { ::posix_spawn_file_actions_destroy(&actions_); }

    void open(int descriptor, const std::string& path, int flags) {
        check(::posix_spawn_file_actions_addopen(&actions_, descriptor, path.c_str(), flags, 0));
    }
    const posix_spawn_file_actions_t* get() const { return &actions_; }

  private:
    posix_spawn_file_actions_t actions_;
};

/// Makes a child end if nobody reads its output, even if this program ignores that signal.
class Attributes {
  public:
    Attributes() {
        check(::posix_spawnattr_init(&attributes_));
        sigset_t signals;
        ::sigemptyset(&signals);
        ::sigaddset(&signals, SIGPIPE);
        check(::posix_spawnattr_setsigdefault(&attributes_, &signals));
        check(::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGDEF));
    }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;
    ~Attributes() { ::posix_spawnattr_destroy(&attributes_); }

    const posix_spawnattr_t* get() const { return &attributes_; }

  private:
    posix_spawnattr_t attributes_;
};

int waitFor(pid_t child) {
    int status = 0;
    while (::waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) {
            check(errno);
        }
    }
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

pid_t start(const std::string& program, std::vector<std::string> arguments,
            const StreamFiles& files) {
    FileActions actions;
    actions.open(STDIN_FILENO, files.input, O_RDONLY);
    actions.open(STDOUT_FILENO, files.output, O_WRONLY);
    actions.open(STDERR_FILENO, files.errors, O_WRONLY | O_APPEND);
    std::vector<char*> pointers;
    for (std::string& argument : arguments) {
        pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    pid_t child = 0;
    check(::posix_spawn(&child, program.c_str(), actions.get(), Attributes().get(), pointers.data(),
                        environ));
    return child;
}

pid_t start(std::vector<std::string> arguments, const StreamFiles& files) {
    arguments.insert(arguments.begin(), stencilor.string());
    return start(stencilor.string(), std::move(arguments), files);
}

Outcome run(const std::vector<std::string>& arguments, const Streams& streams) {
    const StreamFiles files(streams);
    return files.outcome(waitFor(start(arguments, files)));
}

#endif

} // namespace

Arguments::Arguments(const std::string& line) {
    bool isQuoted = false;
    bool isOpen = false;
    for (const char character : line) {
        if (character == ' ' && !isQuoted) {
            isOpen = false;
            continue;
        }
        if (!isOpen) {
            emplace_back();
            isOpen = true;
        }
        if (character == '\'') {
            isQuoted = !isQuoted;
        } else {
            back() += character;
        }
    }
}

Outcome runStencilor(const Arguments& arguments, const Streams& streams) {
    return run(arguments, streams);
}

#ifdef _WIN32

struct RunningStencilor::Child {
    explicit Child(const std::vector<std::string>& arguments) : process(start(arguments, files)) {}
    ~Child() {
        ::TerminateProcess(process.get(), 0);
        ::WaitForSingleObject(process.get(), INFINITE);
    }

    StreamFiles files{{}};
    Handle process;
};

#else

struct RunningStencilor::Child {
    explicit Child(const std::vector<std::string>& arguments) : process(start(arguments, files)) {}
    ~Child() {
        ::kill(process, SIGTERM);
        waitFor(process);
    }

    StreamFiles files{{}};
    pid_t process;
};

Outcome runShell(const std::string& command, const Streams& streams) {
    const StreamFiles files(streams);
    return files.outcome(
        waitFor(start("/bin/sh", {"sh", "-c", command, stencilor.string()}, files)));
}

#endif

RunningStencilor::RunningStencilor(const Arguments& arguments)
    : child_(std::make_unique<Child>(arguments)) {}

RunningStencilor::~RunningStencilor() = default;

std::string RunningStencilor::errors() const {
    return support::readFile(child_->files.errors);
}

} // namespace program
