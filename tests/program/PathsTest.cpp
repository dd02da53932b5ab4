#include "ProgramTest.h"

#ifdef _WIN32
#include "../support/LockedFile.h"

#include <windows.h>
#endif

namespace program {
namespace {

namespace fs = std::filesystem;

fs::path native(const std::string& path) {
    return fs::path(std::u8string(path.begin(), path.end()));
}

/// `模板/überblick.txt` includes a file in its folder, which must have an ASCII name.
class PathsTest : public ProgramTest {
  protected:
    PathsTest() {
        folder.makeFolder(templates);
        folder.writeFile(page, "{{ title }}[{% include \"part.txt\" %}]\n");
        folder.writeFile(templates + "/part.txt", "na\u00EFve");
        folder.writeFile(context, "{\"title\":\"\u00DCberblick \u6A21\u677F\"}");
    }

    const std::string templates = "\u6A21\u677F";
    const std::string page = templates + "/\u00FCberblick.txt";
    const std::string context = "\u503C \u20AC.json";
    const std::string output = templates + "/na\u00EFve \U0001F600.txt";
    const std::string expected = "\u00DCberblick \u6A21\u677F[na\u00EFve]\n";
};

TEST_F(PathsTest, MayBeInAnyLanguage) {
    expectOutcome(runStencilor({"render", page, context}), 0, expected, "");
    expectOutcome(runStencilor({"render", page, context, "-o", output}), 0, "", "");
    EXPECT_EQ(support::readFile(output), expected);
    expectOutcome(runStencilor({"render", folder.path(page), folder.path(context)}), 0, expected,
                  "");
    expectOutcome(runStencilor({"render", page, "-D", "title=\u6A21"}), 0, "\u6A21[na\u00EFve]\n",
                  "");
}

TEST_F(PathsTest, MayLeadToARootInAnyLanguage) {
    const std::string input = "[{% include \"part.txt\" %}]";
    expectOutcome(runStencilor({"render", "-", "--root", templates}, {.input = input}), 0,
                  "[na\u00EFve]", "");
    expectOutcome(runStencilor("render - --root \u677F", {.input = input}), 2, "",
                  "stencilor: \u677F: not a readable folder\n");
}

TEST_F(PathsTest, AreReportedAsGiven) {
    folder.writeFile(page, "{{ missing }}");
    expectOutcome(runStencilor({"render", page}), 1, "",
                  page +
                      ":1:4: warning: no string is named \"missing\"\n{{ missing }}\n   ^~~~~~~\n");
}

TEST_F(PathsTest, OfIncludedFilesAreInAsciiOrTheTemplateIsRejected) {
    folder.writeFile(templates + "/na\u00EFve.txt", "text");
    folder.writeFile(page, "[{% include \"na\u00EFve.txt\" %}]");
    const Outcome outcome = runStencilor({"render", page});
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.output, "");
    EXPECT_TRUE(outcome.errors.starts_with(page + ":1:16: error: ")) << outcome.errors;
}

/// A folder whose path exceeds the default limit of 260 characters on Windows. It removes itself,
/// because the removal of the test's folder would fail there.
class LongFolder {
  public:
    explicit LongFolder(const support::TemporaryFolder& folder)
        : path_(folder.path()), native_(native(path_)) {
#ifdef _WIN32
        native_ = L"\\\\?\\" + native_.make_preferred().native();
#endif
        for (int level = 0; level < levels; ++level) {
            const std::string name = std::string(40, 'l') + "\u00E4\u6A21";
            path_ += "/" + name;
            fs::create_directory(native_ /= native(name));
        }
    }
    LongFolder(const LongFolder&) = delete;
    LongFolder& operator=(const LongFolder&) = delete;
    ~LongFolder() {
        std::error_code ignored;
        for (const char* const file : {"page.txt", "out.txt"}) {
            fs::remove(native_ / file, ignored);
        }
        for (int level = 0; level < levels; ++level) {
            fs::remove(native_, ignored);
            native_ = native_.parent_path();
        }
    }

    std::string path(const std::string& file) const {
        return path_ + "/" + file;
    }
    fs::path nativePath(const std::string& file) const {
        return native_ / file;
    }

  private:
    static constexpr int levels = 8;

    std::string path_;
    fs::path native_;
};

TEST_F(PathsTest, MayBeLong) {
    const LongFolder below(folder);
    fs::rename(native(page), below.nativePath("page.txt"));
    expectOutcome(runStencilor({"render", below.path("page.txt"), context, "--root", templates}), 0,
                  expected, "");
    for (const char* const text : {"new", "replaced"}) {
        expectOutcome(runStencilor({"render", "-", "-o", below.path("out.txt")}, {.input = text}),
                      0, "", "");
        fs::remove("copy.txt");
        fs::copy_file(below.nativePath("out.txt"), "copy.txt");
        EXPECT_EQ(support::readFile("copy.txt"), text);
    }
}

#ifdef _WIN32

void expectRefused(const Outcome& outcome, const std::string& file) {
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_TRUE(outcome.errors.starts_with("stencilor: " + file + ": ")) << outcome.errors;
}

TEST_F(PathsTest, OfLockedFilesAreRejected) {
    folder.writeFile("out.txt", "before");
    {
        const support::LockedFile locked(native(page));
        expectRefused(runStencilor({"render", page}), page);
    }
    {
        const support::LockedFile locked(native(context));
        expectRefused(runStencilor({"render", page, context}), context);
    }
    {
        const support::LockedFile locked("out.txt");
        expectRefused(runStencilor({"render", page, context, "-o", "out.txt"}), "out.txt");
    }
    EXPECT_EQ(support::readFile("out.txt"), "before");
    {
        const support::LockedFile locked(native(templates + "/part.txt"));
        expectOutcome(runStencilor({"render", page, context}), 1, "\u00DCberblick \u6A21\u677F[]\n",
                      page + ":1:25: warning: included file \"part.txt\" cannot be read\n"
                             "{{ title }}[{% include \"part.txt\" %}]\n"
                             "                        ^~~~~~~~\n");
    }
}

TEST_F(PathsTest, OfReadOnlyFilesAreReadButNotWritten) {
    for (const std::string& path : {page, context}) {
        ASSERT_NE(::SetFileAttributesW(native(path).c_str(), FILE_ATTRIBUTE_READONLY), 0);
    }
    expectOutcome(runStencilor({"render", page, context}), 0, expected, "");
    expectRefused(runStencilor({"render", "-", "-o", page}, {.input = "new"}), page);
    EXPECT_EQ(support::readFile(page), "{{ title }}[{% include \"part.txt\" %}]\n");
    for (const std::string& path : {page, context}) {
        ASSERT_NE(::SetFileAttributesW(native(path).c_str(), FILE_ATTRIBUTE_NORMAL), 0);
    }
}

TEST_F(PathsTest, OfDevicesAreWrittenTo) {
    expectOutcome(runStencilor({"render", page, context, "-o", "NUL"}), 0, "", "");
}

#endif

} // namespace
} // namespace program
