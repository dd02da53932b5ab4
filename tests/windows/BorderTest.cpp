#include "../support/Context.h"
#include "../support/TemporaryFolder.h"
#include "../support/Test.h"
#include "FailingImport.h"

#include <libKel/FileSystem.h>

#include <windows.h>

// Memory and exceptions that pass between this program and the two libraries.

namespace support {
namespace {

std::vector<HANDLE> heaps() {
    std::array<HANDLE, 64> handles = {};
    const DWORD count = ::GetProcessHeaps(static_cast<DWORD>(handles.size()), handles.data());
    EXPECT_GT(count, 0u);
    EXPECT_LE(count, handles.size());
    return std::vector<HANDLE>(handles.begin(), handles.begin() + count);
}

void expectSoundHeaps() {
    for (const HANDLE heap : heaps()) {
        EXPECT_NE(::HeapValidate(heap, 0, nullptr), 0);
    }
}

/// The number of allocated blocks in the whole process, by any module.
std::size_t allocatedBlocks() {
    std::size_t blocks = 0;
    for (const HANDLE heap : heaps()) {
        PROCESS_HEAP_ENTRY entry = {};
        while (::HeapWalk(heap, &entry) != 0) {
            blocks += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? 1 : 0;
        }
    }
    return blocks;
}

// The number of repetitions of an action that must not leak. Heaps keep some blocks for themselves,
// so leaks are compared with this number.
constexpr int turns = 1000;

const std::string longText(200, 't');

/// A value of each kind, made by this program.
ContextBase* madeHere() {
    auto* const root = new ContextDictionary();
    auto* const list = new ContextIterable();
    auto* const truth = new ContextBoolean(true);
    root->insert("list", list);
    list->add(new ContextString(longText));
    list->add(nullptr);
    list->add(new ContextBase());
    list->insert("truth of " + longText, truth);
    truth->insert(longText, new ContextString("short"));
    return root;
}

/// The same, made by the library.
ContextBase* madeThere() {
    return dictionary(
        {{"list", list({text(longText), nullptr, dictionary()})},
         {"truth of " + longText, truth(true, {{kel::String(longText), text("short")}})}});
}

/// Destroys the values in the library.
void destroyThere(ContextBase* values) {
    delete ContextFactory::buildIterable({values});
}

void destroyHere(ContextBase* values) {
    const std::unique_ptr<ContextBase> owner(values);
}

TEST(Border, ValuesMayBeMadeOnOneSideAndDestroyedOnTheOther) {
    const struct {
        const char* name;
        ContextBase* (*make)();
        void (*destroy)(ContextBase*);
    } cases[] = {
        {"made here, destroyed here", madeHere, destroyHere},
        {"made here, destroyed there", madeHere, destroyThere},
        {"made there, destroyed here", madeThere, destroyHere},
        {"made there, destroyed there", madeThere, destroyThere},
    };
    for (const auto& [name, make, destroy] : cases) {
        SCOPED_TRACE(name);
        destroy(make());
        const std::size_t before = allocatedBlocks();
        for (int turn = 0; turn < turns; ++turn) {
            destroy(make());
        }
        EXPECT_LT(allocatedBlocks(), before + turns);
        expectSoundHeaps();
    }
}

TEST(Border, TextsAndBuffersAreFreedByTheirOwner) {
    const TemporaryFolder folder;
    folder.writeFile("file", longText);
    const kel::String path = folder.path("file");
    const Root root({{"name", text(longText)}});
    const auto turn = [&] {
        kel::String errors;
        kel::String output = kel::Stencilor::buildOutput("{{ name }}{{ missing }}", root, errors);
        errors += output;
        output = errors.subString(1, 100);
        kel::Buffer<unsigned char> buffer;
        EXPECT_TRUE(kel::FileSystem::loadFile(path, buffer, nullptr));
        EXPECT_TRUE(kel::FileSystem::loadFile(path, buffer, nullptr));
    };
    turn();
    const std::size_t before = allocatedBlocks();
    for (int count = 0; count < turns; ++count) {
        turn();
    }
    EXPECT_LT(allocatedBlocks(), before + turns);
    expectSoundHeaps();
}

// Shows that the tests above detect leaks.
TEST(Border, LeaksOnEitherSideAreDetected) {
    for (ContextBase* (*make)() : {madeHere, madeThere}) {
        const std::size_t before = allocatedBlocks();
        ContextBase* const values = make();
        EXPECT_GT(allocatedBlocks(), before);
        delete values;
    }
}

class ValueOfTheHost : public ContextString {
  public:
    ValueOfTheHost(const kel::String& text, bool& destroyed)
        : ContextString(text), destroyed_(destroyed) {}
    ValueOfTheHost(const ValueOfTheHost&) = delete;
    ValueOfTheHost& operator=(const ValueOfTheHost&) = delete;
    ~ValueOfTheHost() override { destroyed_ = true; }

  private:
    bool& destroyed_;
};

TEST(Border, ClassesOfThisProgramAreKnownThereAndDestroyedByTheirOwnDestructor) {
    bool destroyed = false;
    ContextDictionary* const root = dictionary({{"name", new ValueOfTheHost("Ada", destroyed)}});
    EXPECT_EQ(render("{{ name }}", *root), (Rendered{"Ada", ""}));
    EXPECT_NE(dynamic_cast<ValueOfTheHost*>(root->find("name")), nullptr);
    EXPECT_FALSE(destroyed);
    destroyThere(root);
    EXPECT_TRUE(destroyed);
}

/// Calls `action` with the allocations of a DLL failing from the first one on, then from the second
/// one on, and so on until none fails. `std::bad_alloc` must arrive here each time.
template <typename Action>
void exhaustMemory(const wchar_t* dll, Action action) {
    bool failed = true;
    int caught = 0;
    int count = 0;
    for (; failed; ++count) {
        const FailingImport failure(dll, count);
        try {
            action();
        } catch (const std::bad_alloc&) {
            ++caught;
        }
        failed = failure.happened();
    }
    EXPECT_GT(count, 1) << "nothing was allocated at all";
    EXPECT_EQ(caught, count - 1);
    expectSoundHeaps();
}

TEST(Border, ExhaustedMemoryPassesFromTheEngineToThisProgram) {
    const Root root({{"name", text(longText)}, {"yes", truth(true)}});
    const std::string input =
        "{{ name }}{% if yes %}{{ name }}{{ name }}{{ missing }}{% endif %}" + longText;
    const Rendered expected = render(input, root);
    const auto exhaust = [&] {
        // It allocates memory itself for text longer than a line or two. The base library
        // allocates for strings, and the C++ run-time elsewhere.
        for (const wchar_t* const dll : {L"libStencilor.dll", L"libKel.dll", L"libstdc++-6.dll"}) {
            exhaustMemory(dll, [&] { render(input, root); });
            EXPECT_EQ(render(input, root), expected);
        }
    };
    exhaust(); // heaps and the run-time have now allocated what they keep
    const std::size_t before = allocatedBlocks();
    exhaust();
    EXPECT_LT(allocatedBlocks(), before + 5);
}

TEST(Border, ExhaustedMemoryPassesFromTheBaseLibraryToThisProgram) {
    const TemporaryFolder folder;
    folder.writeFile("file", longText);
    const kel::String path = folder.path("file");
    kel::Buffer<unsigned char> buffer;
    exhaustMemory(L"libstdc++-6.dll", [&] { kel::FileSystem::loadFile(path, buffer, nullptr); });
    EXPECT_EQ(buffer.size, longText.size());

    const kel::String other(longText);
    kel::String string("former");
    exhaustMemory(L"libKel.dll", [&] {
        EXPECT_EQ(string, "former");
        string += other;
    });
    EXPECT_EQ(string.view(), "former" + longText);
    exhaustMemory(L"libKel.dll", [&] { kel::String(other.view()); });
}

TEST(Border, TooLongTextsThrowAnExceptionThatThisProgramCatches) {
    const std::string_view tooLong("never looked at", std::size_t{1} << 32);
    EXPECT_THROW(const kel::String text(tooLong), std::length_error);
}

} // namespace
} // namespace support
