#include "../support/LogRecorder.h"
#include "../support/PrescribedMessages.h"
#include "../support/TemporaryFolder.h"
#include "../support/Test.h"
#include "../support/oracles/RenderingComparison.h"

#include <libKel/FileSystem.h>
#include <libKel/Logging.h>
#include <libStencilor/Template.h>

namespace support {
namespace {

using kel::LoggerPriority::LOGGER_PRIORITY;
using kel::Stencilor::ContextBase;
using kel::Stencilor::RenderResult;
using kel::Stencilor::Template;

/// Our own base library, with files in a root.
class OwnHost : public ComparedHost {
  public:
    OwnHost() {
        folder_.makeFolder("parts");
        folder_.writeSparseFile("bad", 4ull << 30);
        if (!kel::FileSystem::setRoot(folder_.path())) {
            ADD_FAILURE() << "no root at " << folder_.path();
        }
    }
    OwnHost(const OwnHost&) = delete;
    OwnHost& operator=(const OwnHost&) = delete;
    ~OwnHost() override {
        kel::FileSystem::clearRoot();
        logger_.threshold = 0;
    }

    void setFiles(const Files& files) override {
        for (const auto& [path, bytes] : files) {
            if (bytes) {
                // Some file systems wait for the disk when a file is overwritten.
                std::filesystem::remove(folder_.path(path));
                folder_.writeFile(path, *bytes);
            }
        }
    }

    /// Here, the effective priority follows from the others.
    void setPriorities(std::int32_t global, std::int32_t threshold, std::int32_t) override {
        kel::LogFactory::setPriority(static_cast<LOGGER_PRIORITY>(global));
        logger_.threshold = threshold;
    }

    kel::String toString(Random&, const std::string& bytes) override { return bytes; }
    std::string toBytes(const kel::String& string) override { return string.str(); }
    std::vector<std::string> takeRecords() override { return recorder_.takeLines(); }

    void compareFurther(const kel::String& input, const ContextBase& context,
                        const std::string& output,
                        const std::optional<std::string>& errors) override {
        const Template parsed(input);
        const RenderResult whole = parsed.render(context);
        EXPECT_EQ(whole.text.str(), output) << input;
        if (errors) {
            EXPECT_EQ(prescribedText(whole), *errors) << input;
        }
        std::string joined;
        parsed.renderTo(context, [&joined](std::string_view piece) { joined += piece; });
        EXPECT_EQ(joined, output) << input;
    }

  private:
    TemporaryFolder folder_;
    LogRecorder recorder_{kel::LoggerPriority::PRIORITY_TRACE};
    kel::Logger& logger_ = loggerOf("libStencilor");
};

TEST(SecondRenderer, AgreesOnRandomTemplatesContextsAndFiles) {
    OwnHost host;
    compareRenderings(host, 10000);
}

} // namespace
} // namespace support
