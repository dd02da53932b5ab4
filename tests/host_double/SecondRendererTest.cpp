#include "../support/Test.h"
#include "../support/oracles/RenderingComparison.h"
#include "HostDouble.h"

namespace support {
namespace {

using kel::HostDouble;
using kel::String;

/// All calls are recorded, so the engine must make the same calls to the base library as the second
/// renderer, in the same order, except for comparisons of names.
class ForeignHost : public ComparedHost {
  public:
    ForeignHost() { host_.reset(); }

    void setFiles(const Files& files) override { host_.files = files; }

    void setPriorities(std::int32_t global, std::int32_t threshold,
                       std::int32_t effective) override {
        host_.takeLoggersBack();
        host_.notesText = true;
        host_.globalPriority = global;
        host_.logger.threshold = threshold;
        host_.resolvedPriority = effective;
    }

    /// One character for each byte, or for each byte with other high bits, or decoded as UTF-8.
    String toString(Random& random, const std::string& bytes) override {
        const auto size = static_cast<unsigned int>(bytes.size());
        String string(bytes.data(), size);
        if (random.oneIn(4)) {
            std::u32string text(HostDouble::textOf(string));
            std::for_each(text.begin(), text.end(), [&random](char32_t& character) {
                character |= static_cast<char32_t>(random.below(0x1100) << 8);
            });
            return HostDouble::wide(text);
        }
        if (random.oneIn(2)) {
            string.UTF8Decode(bytes.data(), size, false);
        }
        return string;
    }

    std::string toBytes(const String& string) override {
        const std::u32string_view text = HostDouble::textOf(string);
        std::string bytes;
        for (const char32_t character : text) {
            for (int shift = 0; shift < 32; shift += 8) {
                bytes += static_cast<char>(character >> shift);
            }
        }
        return bytes;
    }

    std::vector<std::string> takeRecords() override { return host_.takeCalls(); }

    void setCallsUntilFailure(std::optional<std::uint64_t> count) override {
        host_.callsUntilFailure = count;
    }

  private:
    HostDouble& host_ = HostDouble::instance();
};

TEST(SecondRenderer, AgreesOnAForeignBaseLibrary) {
    ForeignHost host;
    compareRenderings(host, 5000);
}

} // namespace
} // namespace support
