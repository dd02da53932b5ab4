#include "../support/TemporaryFolder.h"
#include "../support/Test.h"

#include <windows.h>

#include <regex>

// What users see in a console window: the program runs in a console that is written to a pipe as
// UTF-8.

namespace program {
namespace {

// Only defined in newer headers.
constexpr DWORD_PTR pseudoConsoleAttribute = 0x00020016;
using PseudoConsole = void*;
using CreatePseudoConsole = HRESULT WINAPI(COORD, HANDLE, HANDLE, DWORD, PseudoConsole*);
using ClosePseudoConsole = void WINAPI(PseudoConsole);

template <typename Function>
Function* findSystemFunction(const char* name) {
    return reinterpret_cast<Function*>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), name)));
}

std::wstring quoted(const std::filesystem::path& path) {
    return L'"' + path.native() + L'"';
}

class Pipe {
  public:
    Pipe() { EXPECT_NE(::CreatePipe(&reader, &writer, nullptr, 0), 0); }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe() {
        ::CloseHandle(reader);
        ::CloseHandle(writer);
    }

    HANDLE reader = nullptr;
    HANDLE writer = nullptr;
};

class Console {
  public:
    Console() {
        constexpr COORD size = {120, 30};
        EXPECT_EQ(findSystemFunction<CreatePseudoConsole>("CreatePseudoConsole")(
                      size, input_.reader, output_.writer, 0, &console_),
                  S_OK);
        reading_ = std::thread([this] { readAll(); });
    }
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;
    ~Console() { close(); }

    /// Runs a program, and returns its exit status. `meanwhile` is called while it runs.
    DWORD run(std::wstring commandLine, const std::function<void()>& meanwhile = {}) {
        SIZE_T size = 0;
        ::InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        const std::unique_ptr<char[]> memory(new char[size]);
        STARTUPINFOEXW startup = {};
        startup.StartupInfo.cb = sizeof(startup);
        startup.lpAttributeList = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory.get());
        EXPECT_NE(::InitializeProcThreadAttributeList(startup.lpAttributeList, 1, 0, &size), 0);
        EXPECT_NE(::UpdateProcThreadAttribute(startup.lpAttributeList, 0, pseudoConsoleAttribute,
                                              console_, sizeof(console_), nullptr, nullptr),
                  0);
        PROCESS_INFORMATION child = {};
        EXPECT_NE(::CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE,
                                   EXTENDED_STARTUPINFO_PRESENT, nullptr, nullptr,
                                   &startup.StartupInfo, &child),
                  0);
        if (meanwhile) {
            meanwhile();
        }
        EXPECT_EQ(::WaitForSingleObject(child.hProcess, 180'000), WAIT_OBJECT_0);
        DWORD status = 0;
        EXPECT_NE(::GetExitCodeProcess(child.hProcess, &status), 0);
        ::CloseHandle(child.hThread);
        ::CloseHandle(child.hProcess);
        ::DeleteProcThreadAttributeList(startup.lpAttributeList);
        return status;
    }

    /// Types text, as a user does.
    void type(const std::string& text) {
        DWORD count = 0;
        EXPECT_NE(::WriteFile(input_.writer, text.data(), static_cast<DWORD>(text.size()), &count,
                              nullptr),
                  0);
    }

    /// The text shown so far, without escape sequences.
    std::string close() {
        return std::regex_replace(closeRaw(), std::regex("\x1B\\[[0-9;?]*[A-Za-z]"), "");
    }

    /// Everything sent to the console window.
    std::string closeRaw() {
        if (reading_.joinable()) {
            findSystemFunction<ClosePseudoConsole>("ClosePseudoConsole")(console_);
            ::CloseHandle(std::exchange(output_.writer, nullptr));
            reading_.join();
        }
        return shown_;
    }

  private:
    void readAll() {
        std::array<char, 4096> block;
        DWORD count = 0;
        while (::ReadFile(output_.reader, block.data(), static_cast<DWORD>(block.size()), &count,
                          nullptr) != 0) {
            shown_.append(block.data(), count);
        }
    }

    Pipe input_;
    Pipe output_;
    PseudoConsole console_ = nullptr;
    std::string shown_;
    std::thread reading_;
};

const std::filesystem::path stencilor = std::filesystem::absolute(STENCILOR_PROGRAM);
const std::filesystem::path inConsole = std::filesystem::absolute(STENCILOR_IN_CONSOLE);

std::string shownBy(const std::wstring& arguments) {
    Console console;
    console.run(quoted(inConsole) + L" " + quoted(stencilor) + L" " + arguments);
    return console.close();
}

TEST(ConsoleTest, ShowsTextOfAnyLanguage) {
    const support::TemporaryFolder folder;
    const support::WorkingFolder inside(folder.path());
    folder.writeFile("page.txt", "\u00DCberblick \u6A21\u677F \u20AC\n{{ missing }}second line\n");
    const std::string shown = shownBy(L"render page.txt");
    EXPECT_NE(shown.find("\u00DCberblick \u6A21\u677F \u20AC\r\nsecond line"), std::string::npos)
        << shown;
}

TEST(ConsoleTest, ShowsMessagesOfAnyLanguage) {
    const support::TemporaryFolder folder;
    const support::WorkingFolder inside(folder.path());
    const std::string shown = shownBy(L"render \u6A21\u677F/\u00FCberblick.txt");
    EXPECT_NE(shown.find("stencilor: \u6A21\u677F/\u00FCberblick.txt: "), std::string::npos)
        << shown;
}

TEST(ConsoleTest, ShowsColorsUnlessDisabled) {
    const support::TemporaryFolder folder;
    const support::WorkingFolder inside(folder.path());
    folder.writeFile("page.txt", "{{");
    const struct {
        const char* name;
        const wchar_t* noColor; // null: the variable is not set
        std::wstring arguments;
        bool colored;
    } cases[] = {
        {"a console", nullptr, L"check page.txt", true},
        {"NO_COLOR", L"1", L"check page.txt", false},
        {"NO_COLOR and a choice", L"1", L"check page.txt --color always", true},
        {"no colors wanted", nullptr, L"check page.txt --color never", false},
    };
    for (const auto& [name, noColor, arguments, colored] : cases) {
        SCOPED_TRACE(name);
        ::SetEnvironmentVariableW(L"NO_COLOR", noColor);
        Console console;
        console.run(quoted(inConsole) + L" " + quoted(stencilor) + L" " + arguments);
        const std::string shown = console.closeRaw();
        EXPECT_NE(shown.find("expected a name"), std::string::npos) << shown;
        EXPECT_EQ(std::regex_search(shown, std::regex("\x1B\\[[0-9;]*31")), colored) << shown;
    }
    ::SetEnvironmentVariableW(L"NO_COLOR", nullptr);
}

TEST(ConsoleTest, StopsWatchingAtCtrlC) {
    const support::TemporaryFolder folder;
    const support::WorkingFolder inside(folder.path());
    folder.writeFile("page.txt", "text");
    Console console;
    const DWORD status = console.run(
        quoted(inConsole) + L" " + quoted(stencilor) + L" render page.txt --watch -o out.txt",
        [&console] {
            for (int i = 0; i < 600 && !std::filesystem::exists("out.txt"); ++i) {
                ::Sleep(100);
            }
            ::Sleep(500); // Ctrl+C waits while a file is being replaced
            console.type("\x03");
        });
    EXPECT_TRUE(status == 0xC000013A || status == 0) << status; // STATUS_CONTROL_C_EXIT; Wine: 0
    EXPECT_EQ(support::readFile("out.txt"), "text");
}

} // namespace
} // namespace program
