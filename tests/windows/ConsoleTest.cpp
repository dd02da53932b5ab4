#include "../support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <filesystem>
#include <memory>
#include <regex>
#include <string>
#include <thread>

// What a user reads in a console window: the program runs in a console that is not shown but
// written to a pipe, as UTF-8.

namespace program {
namespace {

// Known to newer headers only.
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

    void run(std::wstring commandLine) {
        SIZE_T size = 0;
        ::InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        const std::unique_ptr<char[]> memory(new char[size]);
        STARTUPINFOEXW startup = {};
        startup.StartupInfo.cb = sizeof(startup);
        startup.lpAttributeList = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory.get());
        ASSERT_NE(::InitializeProcThreadAttributeList(startup.lpAttributeList, 1, 0, &size), 0);
        ASSERT_NE(::UpdateProcThreadAttribute(startup.lpAttributeList, 0, pseudoConsoleAttribute,
                                              console_, sizeof(console_), nullptr, nullptr),
                  0);
        PROCESS_INFORMATION child = {};
        ASSERT_NE(::CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE,
                                   EXTENDED_STARTUPINFO_PRESENT, nullptr, nullptr,
                                   &startup.StartupInfo, &child),
                  0);
        EXPECT_EQ(::WaitForSingleObject(child.hProcess, 180'000), WAIT_OBJECT_0);
        ::CloseHandle(child.hThread);
        ::CloseHandle(child.hProcess);
        ::DeleteProcThreadAttributeList(startup.lpAttributeList);
    }

    /// What was shown since the beginning, without what moves the cursor and the like.
    std::string close() {
        if (reading_.joinable()) {
            findSystemFunction<ClosePseudoConsole>("ClosePseudoConsole")(console_);
            ::CloseHandle(std::exchange(output_.writer, nullptr));
            reading_.join();
        }
        return std::regex_replace(shown_, std::regex("\x1B\\[[0-9;?]*[A-Za-z]"), "");
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

} // namespace
} // namespace program
