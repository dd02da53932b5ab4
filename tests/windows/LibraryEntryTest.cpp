#include "../support/Test.h"

#include <windows.h>

// This program is not linked to the libraries, but loads and frees them while it runs.

namespace {

constexpr const wchar_t* library = L"libStencilor.dll";
constexpr const wchar_t* baseLibrary = L"libKel.dll";

void expectUnloaded() {
    EXPECT_EQ(::GetModuleHandleW(library), nullptr);
    EXPECT_EQ(::GetModuleHandleW(baseLibrary), nullptr);
}

DWORD openHandles() {
    DWORD count = 0;
    EXPECT_NE(::GetProcessHandleCount(::GetCurrentProcess(), &count), 0);
    return count;
}

class Module {
  public:
    explicit Module(const wchar_t* name) : handle_(::LoadLibraryW(name)) {
        EXPECT_NE(handle_, nullptr) << "error " << ::GetLastError();
    }
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;
    ~Module() { EXPECT_NE(::FreeLibrary(handle_), 0); }

    HMODULE get() const { return handle_; }

    template <typename Function>
    Function* find(const char* name) const {
        return reinterpret_cast<Function*>(
            reinterpret_cast<void*>(::GetProcAddress(handle_, name)));
    }

  private:
    HMODULE handle_;
};

/// Counts and intercepts the calls of a module's entry point, by replacing its first instruction
/// with a breakpoint. There can only be one at a time.
class EntryPointCalls {
  public:
    explicit EntryPointCalls(HMODULE module) {
        auto* const start = reinterpret_cast<unsigned char*>(module);
        const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(start);
        const auto* const headers =
            reinterpret_cast<const IMAGE_NT_HEADERS*>(start + dos->e_lfanew);
        entry = start + headers->OptionalHeader.AddressOfEntryPoint;
        count = 0;
        instruction_ = *entry;
        handler_ = ::AddVectoredExceptionHandler(1, handle);
        replaceInstruction(0xCC);
    }
    EntryPointCalls(const EntryPointCalls&) = delete;
    EntryPointCalls& operator=(const EntryPointCalls&) = delete;
    ~EntryPointCalls() {
        replaceInstruction(instruction_);
        ::RemoveVectoredExceptionHandler(handler_);
    }

    int seen() const { return count; }

  private:
    static void replaceInstruction(unsigned char instruction) {
        DWORD protection = 0;
        ::VirtualProtect(entry, 1, PAGE_EXECUTE_READWRITE, &protection);
        *entry = instruction;
        ::VirtualProtect(entry, 1, protection, &protection);
        ::FlushInstructionCache(::GetCurrentProcess(), entry, 1);
    }

    /// Returns from the entry point with success.
    static LONG CALLBACK handle(EXCEPTION_POINTERS* exception) {
        if (exception->ExceptionRecord->ExceptionCode != EXCEPTION_BREAKPOINT ||
            exception->ExceptionRecord->ExceptionAddress != entry) {
            return EXCEPTION_CONTINUE_SEARCH;
        }
        ++count;
        CONTEXT& context = *exception->ContextRecord;
        context.Rip = *reinterpret_cast<const DWORD64*>(context.Rsp);
        context.Rsp += sizeof(DWORD64);
        context.Rax = TRUE;
        return EXCEPTION_CONTINUE_EXECUTION;
    }

    static inline unsigned char* entry;
    static inline std::atomic<int> count;

    unsigned char instruction_;
    void* handler_;
};

int callsByAThread(const Module& module) {
    const EntryPointCalls calls(module.get());
    std::thread([] {}).join();
    return calls.seen();
}

TEST(LibraryEntry, LoadsAndUnloadsAThousandTimes) {
    { const Module warmUp(library); }
    expectUnloaded();
    const DWORD handles = openHandles();
    for (int turn = 0; turn < 1000 && !HasFailure(); ++turn) {
        {
            const Module module(library);
            EXPECT_EQ(::GetModuleHandleW(library), module.get());
        }
        expectUnloaded();
    }
    EXPECT_EQ(openHandles(), handles);
}

TEST(LibraryEntry, LetsThreadsRenderEachTimeItIsLoaded) {
    constexpr int threadCount = 4;
    constexpr int turns = 100;
    std::atomic<int> right = 0;
    for (int turn = 0; turn < turns && !HasFailure(); ++turn) {
        {
            const Module module(L"rendering_module.dll");
            auto* const rendersAsExpected = module.find<bool()>("rendersAsExpected");
            ASSERT_NE(rendersAsExpected, nullptr);
            ASSERT_NE(::GetModuleHandleW(library), nullptr);
            std::vector<std::thread> threads;
            for (int number = 0; number < threadCount; ++number) {
                threads.emplace_back([&] { right += rendersAsExpected() ? 1 : 0; });
            }
            for (std::thread& thread : threads) {
                thread.join();
            }
        }
        expectUnloaded();
    }
    EXPECT_EQ(right, threadCount * turns);
}

TEST(LibraryEntry, IsNotCalledForThreads) {
    const Module module(library);
    EXPECT_EQ(callsByAThread(module), 0);
}

// Shows that the test above detects such calls.
TEST(LibraryEntry, OfAnotherLibraryIsCalledForThreads) {
    const Module module(L"rendering_module.dll");
    EXPECT_EQ(callsByAThread(module), 2);
}

} // namespace
