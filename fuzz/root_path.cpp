#include "../tests/support/TemporaryFolder.h"
#include "target.h"

#include <libKel/Buffer.h>
#include <libKel/FileSystem.h>

#include <string>

// The input is a path. Any file that it opens inside a root has content that proves it is inside,
// and a name that means the same on every system.

namespace {

using support::TemporaryFolder;

/// A folder that contains the root `r`, files called `f` inside and outside it, and links of all
/// kinds if the system supports them. The names are short, so that the fuzzer finds them quickly.
class Tree {
  public:
    Tree() {
        for (const char* const inside : {"r", "r/a", "r/a/b"}) {
            folder_.makeFolder(inside);
            folder_.writeFile(std::string(inside) + "/f", "inside");
        }
        folder_.makeFolder("s");
        for (const char* const outside : {"f", "s/f", "rf"}) {
            folder_.writeFile(outside, "outside");
        }
#ifndef _WIN32 // where such names mean something else, or cannot be created
        for (const char* const refused : {"f.", "f ", "C:f", "a\\f", "NUL", "a/COM1.f", "\x01"}) {
            folder_.writeFile("r/" + std::string(refused), "refused");
        }
#endif
        linkTo("r/i", "a/b");
        linkTo("r/j", "../r/a/f");
        linkTo("r/u", "..");
        linkTo("r/a/u", "../..");
        linkTo("r/o", "../f");
        linkTo("r/p", folder_.path("s"));
        linkTo("r/q", folder_.path("r/a"));
        linkTo("r/x", "x");
        linkTo("r/y", "i/../u/s");
        fuzz::require(kel::FileSystem::setRoot(folder_.path("r")), "a folder can be the root");
    }

  private:
    void linkTo(const char* name, const std::string& target) const {
        // Without support for links, only paths are tested.
        static_cast<void>(folder_.makeLink(name, target));
    }

    TemporaryFolder folder_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Tree tree;
    const std::string_view input = fuzz::textOf(data, size);
    const kel::String path(input);
    kel::Buffer<unsigned char> buffer;
    const bool loaded = kel::FileSystem::loadFile(path, buffer, nullptr);
    fuzz::require(loaded == kel::FileSystem::exists(path), "what exists can be loaded");
    fuzz::require(loaded == (fuzz::textOf(buffer.data, buffer.size) == "inside"),
                  "what is loaded lies inside the root, under a name of every system");
    fuzz::require(!loaded || input.front() != '/', "an absolute path names nothing");
    return 0;
}
