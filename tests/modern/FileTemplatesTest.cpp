#include "../support/TemporaryFolder.h"
#include "Rendering.h"

namespace support {
namespace {

using Answer = TemplateSource::Answer;
using kel::Stencilor::FileTemplates;
using kel::Stencilor::renderFile;
using namespace std::chrono_literals;

class FileSource : public testing::Test {
  protected:
    std::string render(const char* path) {
        const RenderResult result = renderFile(path, {}, {.source = &source_});
        return result.status == RenderStatus::Complete ? result.text.str() : "no text";
    }

    /// The text of a template, which stays in the same block while it is cached.
    const char* textOf(const char* path) {
        std::optional<Template> found;
        EXPECT_EQ(source_.find(path, UINT64_MAX, found), Answer::Found);
        return found->text().view().data();
    }

    /// Sets the modification time of a file.
    void age(const char* path, std::filesystem::file_time_type::duration age) {
        const std::filesystem::path file = folder_.path(path);
        last_write_time(file, std::filesystem::file_time_type::clock::now() - age);
    }

    const TemporaryFolder folder_;
    FileTemplates source_{folder_.path()};
};

const std::string longText(1000, 'x'); // not a short string

TEST_F(FileSource, KeepsAFileThatDoesNotChange) {
    folder_.writeFile("a", longText);
    age("a", 10s);
    const char* const first = textOf("a");
    EXPECT_EQ(textOf("a"), first);
    EXPECT_EQ(textOf("a"), first);
}

TEST_F(FileSource, KeepsAFileForOneOfItsPaths) {
    folder_.makeFolder("d");
    folder_.writeFile("a", longText);
    age("a", 10s);
    const char* const first = textOf("a");
    std::optional<Template> detour;
    ASSERT_EQ(source_.find("d/../a", UINT64_MAX, detour), Answer::Found);
    EXPECT_EQ(detour->name(), "d/../a");
    EXPECT_NE(textOf("d/../a"), detour->text().view().data()) << "kept twice";
    EXPECT_EQ(textOf("a"), first);
}

TEST_F(FileSource, ReadsAFileAgainIfItChangedLessThanTwoSecondsAgo) {
    folder_.writeFile("a", longText);
    std::optional<Template> first;
    ASSERT_EQ(source_.find("a", UINT64_MAX, first), Answer::Found);
    EXPECT_NE(textOf("a"), first->text().view().data());
    const auto changed = last_write_time(std::filesystem::path(folder_.path("a")));
    folder_.writeFile("a", std::string(1000, 'y')); // of the same size
    last_write_time(std::filesystem::path(folder_.path("a")), changed);
    EXPECT_EQ(render("a"), std::string(1000, 'y'));
}

TEST_F(FileSource, ReadsAFileAgainIfItChanged) {
    folder_.writeFile("a", "12345");
    age("a", 100s);
    EXPECT_EQ(render("a"), "12345");
    folder_.writeFile("a", "54321");
    age("a", 50s);
    EXPECT_EQ(render("a"), "54321") << "another time";
    folder_.writeFile("a", "54321 and more");
    age("a", 50s);
    EXPECT_EQ(render("a"), "54321 and more") << "grown";
    folder_.writeFile("a", "5");
    age("a", 50s);
    EXPECT_EQ(render("a"), "5") << "truncated";
    folder_.writeFile("a", "{{");
    EXPECT_EQ(render("a"), "no text") << "rejected";
    std::filesystem::remove(folder_.path("a"));
    EXPECT_EQ(render("a"), "no text") << "deleted";
    folder_.writeFile("a", "again");
    EXPECT_EQ(render("a"), "again");
}

TEST_F(FileSource, ReadsAFileAgainIfItWasReplacedByOneOfTheSameSizeAndTime) {
    folder_.writeFile("a", "12345");
    folder_.writeFile("b", "54321");
    age("a", 100s);
    last_write_time(std::filesystem::path(folder_.path("b")),
                    last_write_time(std::filesystem::path(folder_.path("a"))));
    EXPECT_EQ(render("a"), "12345");
    std::filesystem::rename(folder_.path("b"), folder_.path("a"));
    EXPECT_EQ(render("a"), "54321");
}

TEST_F(FileSource, ReadsAFileOfTheFutureAgain) {
    folder_.writeFile("a", longText);
    age("a", -100s);
    std::optional<Template> first;
    ASSERT_EQ(source_.find("a", UINT64_MAX, first), Answer::Found);
    EXPECT_NE(textOf("a"), first->text().view().data());
}

TEST_F(FileSource, GivesATemplateTheNameOfItsPath) {
    folder_.makeFolder("below");
    folder_.writeFile("below/a", "{{ gone }}");
    const RenderResult result = renderFile("below/a", {}, {.source = &source_});
    ASSERT_EQ(result.messages.size(), 1u);
    EXPECT_EQ(result.messages[0].templateName, "below/a");
}

TEST_F(FileSource, RespectsTheLimitToTheByteForCachedAndUncachedFiles) {
    folder_.writeFile("kept", "12345");
    folder_.writeFile("new", "12345");
    folder_.writeFile("empty", "");
    age("kept", 100s);
    for (int time = 0; time < 3; ++time) {
        for (const char* const path : {"kept", "new"}) {
            std::optional<Template> found;
            EXPECT_EQ(source_.find(path, 4, found), Answer::TooLarge);
            EXPECT_FALSE(found);
            EXPECT_EQ(source_.find(path, 0, found), Answer::TooLarge);
            EXPECT_EQ(source_.find(path, 5, found), Answer::Found);
            EXPECT_EQ(found->text(), "12345");
        }
        std::optional<Template> found;
        EXPECT_EQ(source_.find("empty", 0, found), Answer::Found);
    }
}

// The size is checked before anything is read.
TEST_F(FileSource, NeverReadsMoreThanATemplateMayHave) {
    folder_.writeSparseFile("huge", 4ull << 30);
    std::optional<Template> found;
    EXPECT_EQ(source_.find("huge", 1000, found), Answer::TooLarge);
    EXPECT_EQ(source_.find("huge", (4ull << 30) - 1, found), Answer::TooLarge);
    EXPECT_EQ(source_.find("huge", 4ull << 30, found), Answer::Unreadable);
    EXPECT_EQ(source_.find("huge", UINT64_MAX, found), Answer::Unreadable);
    EXPECT_FALSE(found);
    EXPECT_EQ(renderFile("huge", {}, {.source = &source_}).status, RenderStatus::Unreadable);
}

// Which files are inside a folder is tested with kel::Folder.
TEST_F(FileSource, FindsNothingOutsideItsFolder) {
    folder_.makeFolder("root");
    folder_.writeFile("secret", "secret");
    folder_.writeFile("root/a", "a");
    FileTemplates source(folder_.path("root"));
    std::optional<Template> found;
    EXPECT_EQ(source.find("../secret", UINT64_MAX, found), Answer::Missing);
    EXPECT_EQ(source.find(folder_.path("root/a"), UINT64_MAX, found), Answer::Missing);
    EXPECT_EQ(source.find("a", UINT64_MAX, found), Answer::Found);
}

TEST_F(FileSource, NeedsAFolder) {
    folder_.writeFile("file", "");
    EXPECT_THROW(FileTemplates(folder_.path("gone")), std::invalid_argument);
    EXPECT_THROW(FileTemplates(folder_.path("file")), std::invalid_argument);
    EXPECT_THROW(FileTemplates(""), std::invalid_argument);
    try {
        FileTemplates source("no/such/folder");
        FAIL();
    } catch (const std::invalid_argument& error) {
        EXPECT_NE(std::string(error.what()).find("no/such/folder"), std::string::npos);
    }
}

} // namespace
} // namespace support
