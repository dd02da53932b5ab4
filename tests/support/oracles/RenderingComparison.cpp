#include "RenderingComparison.h"

#include "../Environment.h"
#include "../Test.h"
#include "RandomContext.h"
#include "RandomTemplate.h"
#include "SecondRenderer.h"

namespace support {

namespace {

using kel::String;
using kel::Stencilor::ContextBase;

constexpr std::uint64_t casesWithTheSameFiles = 64;

/// The paths that templates may include: files, which only include later ones, so that none
/// includes itself, then missing paths and paths of other kinds.
const std::vector<std::string> paths = {"f0",         "f1",  "f2",      "parts/f3",
                                        "parts/f4",   "f5",  "missing", "parts",
                                        "parts/none", "bad", "f0/f1"};
constexpr std::size_t fileCount = 6;
const std::string detour = "parts/../"; // as a prefix, it leads to the same file

Files randomFiles(Random& random) {
    Files files;
    for (std::size_t file = 0; file < fileCount; ++file) {
        std::vector<std::string> behind(paths.begin() + static_cast<std::ptrdiff_t>(file) + 1,
                                        paths.end());
        behind.push_back(detour + behind.front());
        files[paths[file]] = random.oneIn(12) ? "" : randomTemplate(random, 8, behind);
    }
    files["bad"] = std::nullopt;
    return files;
}

struct Outcome {
    std::string output;
    std::string errors;
    std::vector<std::string> records;
    bool failed = false;

    bool operator==(const Outcome&) const = default;
};

class Comparison {
  public:
    Comparison(ComparedHost& host, std::uint64_t seed)
        : host_(host), random_(seed), context_(randomContext(random_, toString())),
          text_(randomTemplate(random_, 24, paths)), input_(host.toString(random_, text_)),
          before_(random_.oneIn(8) ? "before|" + randomText(random_) : "") {
        chooseHowItIsCalled();
    }

    /// True if there is output.
    bool run() {
        const Outcome rendered = outcomeOf([this](String& errors) {
            return dropped_ ? kel::Stencilor::buildOutput(input_, *context_)
                            : kel::Stencilor::buildOutput(input_, *context_, errors);
        });
        const Outcome expected = outcomeOf([this](String& errors) {
            return dropped_ ? buildOutputOnceMore(input_, *context_)
                            : buildOutputOnceMore(input_, *context_, errors);
        });
        EXPECT_EQ(rendered.output, expected.output) << text_;
        EXPECT_EQ(rendered.errors, expected.errors) << text_;
        EXPECT_EQ(rendered.records, expected.records) << text_;
        EXPECT_EQ(rendered.failed, expected.failed) << text_;
        if (!rendered.failed) {
            host_.compareFurther(input_, *context_, rendered.output,
                                 dropped_ ? std::nullopt
                                          : std::optional(rendered.errors.substr(before_.size())));
            host_.takeRecords();
        }
        return !expected.output.empty();
    }

  private:
    ToString toString() {
        return [this](Random& random, const std::string& bytes) {
            return host_.toString(random, bytes);
        };
    }

    void chooseHowItIsCalled() {
        dropped_ = random_.oneIn(8);
        if (random_.oneIn(8)) {
            callsUntilFailure_ = random_.below(100);
        }
        const auto priority = [this] { return static_cast<std::int32_t>(random_.below(5)); };
        const bool traced = !random_.oneIn(8);
        const std::int32_t global = traced ? 1 : priority();
        const std::int32_t threshold = traced ? 0 : priority();
        host_.setPriorities(global, threshold, traced ? 2 : priority());
    }

    template <typename Rendering>
    Outcome outcomeOf(const Rendering& rendering) {
        String errors(before_.data(), static_cast<unsigned int>(before_.size()));
        String output;
        Outcome outcome;
        host_.takeRecords();
        host_.setCallsUntilFailure(callsUntilFailure_);
        try {
            output = rendering(errors);
        } catch (const std::bad_alloc&) {
            outcome.failed = true;
        }
        host_.setCallsUntilFailure(std::nullopt);
        outcome.records = host_.takeRecords();
        outcome.output = host_.toBytes(output);
        outcome.errors = host_.toBytes(errors);
        return outcome;
    }

    ComparedHost& host_;
    Random random_;
    std::unique_ptr<ContextBase> context_;
    std::string text_;
    String input_;
    std::string before_;   ///< the text to which the messages are appended
    bool dropped_ = false; ///< true if the messages are not requested
    std::optional<std::uint64_t> callsUntilFailure_;
};

} // namespace

void ComparedHost::compareFurther(const String&, const ContextBase&, const std::string&,
                                  const std::optional<std::string>&) {}

void compareRenderings(ComparedHost& host, std::uint64_t count) {
    const std::uint64_t first = numberFromEnvironment("STENCILOR_SEED", 0);
    const std::uint64_t last = first + numberFromEnvironment("STENCILOR_CASES", count);
    std::uint64_t withOutput = 0;
    for (std::uint64_t seed = first; seed < last && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("STENCILOR_SEED=" + std::to_string(seed) + " STENCILOR_CASES=1");
        if (seed == first || seed % casesWithTheSameFiles == 0) {
            Random random(seed / casesWithTheSameFiles);
            host.setFiles(randomFiles(random));
        }
        if (Comparison(host, seed).run()) {
            ++withOutput;
        }
    }
    std::cout << "compared " << last - first << " renderings, " << withOutput << " with output\n";
}

} // namespace support
