#include "../support/TemporaryFolder.h"
#include "../support/Test.h"
#include "FailingRead.h"

#include <libKel/FileSystem.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace support {
namespace {

/// Closes the standard input temporarily, so that the next opened file gets its number.
class ClosedInput {
  public:
    ClosedInput() : former_(::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3)) { ::close(STDIN_FILENO); }
    ClosedInput(const ClosedInput&) = delete;
    ClosedInput& operator=(const ClosedInput&) = delete;
    ~ClosedInput() {
        if (former_ >= 0) {
            ::dup2(former_, STDIN_FILENO);
            ::close(former_);
        }
    }

    /// True if the number of the standard input is unused.
    bool isFree() const { return ::fcntl(STDIN_FILENO, F_GETFD) < 0; }

  private:
    int former_;
};

TEST(Descriptor, OfAFileMayBeZero) {
    const TemporaryFolder folder;
    folder.writeFile("file", "content");
    const ClosedInput input;
    kel::Buffer<unsigned char> buffer;
    EXPECT_TRUE(kel::FileSystem::loadFile(folder.path("file"), buffer, nullptr));
    EXPECT_EQ(buffer.size, 7u);
    EXPECT_TRUE(input.isFree()) << "the file was not closed";
}

TEST(Descriptor, OfAFileIsNotHandedToProgramsThatAreStarted) {
    const TemporaryFolder folder;
    folder.writeFile("file", "content");
    const FailingRead read(0, EIO);
    kel::Buffer<unsigned char> buffer;
    EXPECT_FALSE(kel::FileSystem::loadFile(folder.path("file"), buffer, nullptr));
    ASSERT_TRUE(read.happened());
    EXPECT_FALSE(read.wasInheritable());
}

} // namespace
} // namespace support
