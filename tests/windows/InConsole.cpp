#include <windows.h>

#include <cstdlib>
#include <string>

// Runs the program whose full path is the first argument, with the console as its standard streams.
// The other arguments are passed on. The exit status is that of the program, even if Ctrl+C ends
// it.

namespace {

HANDLE openConsole(const wchar_t* name) {
    SECURITY_ATTRIBUTES inherited = {sizeof(inherited), nullptr, TRUE};
    return ::CreateFileW(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                         &inherited, OPEN_EXISTING, 0, nullptr);
}

/// The command line without its first word.
std::wstring remainingCommandLine() {
    const std::wstring all = ::GetCommandLineW();
    const std::size_t end = all.front() == L'"' ? all.find(L'"', 1) : all.find(L' ');
    return all.substr(all.find_first_not_of(L' ', end + 1));
}

} // namespace

int main() {
    ::SetConsoleCtrlHandler([](DWORD) { return TRUE; }, TRUE);
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = openConsole(L"CONIN$");
    startup.hStdOutput = openConsole(L"CONOUT$");
    startup.hStdError = startup.hStdOutput;
    PROCESS_INFORMATION child = {};
    std::wstring commandLine = remainingCommandLine();
    if (::CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                         &startup, &child) == 0) {
        return EXIT_FAILURE;
    }
    ::WaitForSingleObject(child.hProcess, INFINITE);
    DWORD status = EXIT_FAILURE;
    ::GetExitCodeProcess(child.hProcess, &status);
    ::ExitProcess(status);
}
