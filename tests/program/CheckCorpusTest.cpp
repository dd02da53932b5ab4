#include "../support/Environment.h"
#include "../support/oracles/RandomTemplate.h"
#include "ProgramTest.h"

#include <libStencilor/Stencilor.h>
#include <libStencilor/Value.h>
#include <libStencilorJson/JsonText.h>

namespace program {
namespace {

/// Checks templates with the program, in one call, and expects a syntax error exactly in those that
/// the engine rejects.
class CheckCorpusTest : public ProgramTest {
  protected:
    void add(const std::string& text) {
        const std::string name = "t" + std::to_string(names_.size());
        folder.writeFile(name, text);
        names_.push_back(name);
        if (isRejected(text)) {
            rejected_.insert(name);
        }
    }

    void expectTheSame() {
        std::vector<std::string> arguments = {"check"};
        arguments.insert(arguments.end(), names_.begin(), names_.end());
        const Outcome outcome = runStencilor(arguments);
        EXPECT_EQ(outcome.errors, "");
        std::set<std::string> found;
        std::size_t begin = 0;
        for (std::size_t error = outcome.output.find(": error: "); error != std::string::npos;
             error = outcome.output.find(": error: ", error + 1)) {
            begin = outcome.output.rfind('\n', error) + 1; // 0 on the first line
            if (outcome.output.compare(error, 22, ": error: included file") != 0) {
                found.insert(outcome.output.substr(begin, outcome.output.find(':', begin) - begin));
            }
        }
        EXPECT_EQ(found, rejected_);
        EXPECT_FALSE(rejected_.empty());
        EXPECT_LT(rejected_.size(), names_.size());
    }

  private:
    static bool isRejected(const std::string& text) {
        kel::String errors;
        buildOutput(kel::String(text), kel::Stencilor::ContextDictionary(), errors);
        return errors.view() ==
               "Could not build formatted output: Failed to parse input correctly.";
    }

    std::vector<std::string> names_;
    std::set<std::string> rejected_;
};

TEST_F(CheckCorpusTest, AgreesWithTheEngineOnEveryInputOfTheFuzzers) {
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(STENCILOR_FUZZ_FOLDER "/seeds")) {
        if (entry.is_regular_file()) {
            add(support::readFile(entry.path().string()));
        }
    }
    expectTheSame();
}

TEST_F(CheckCorpusTest, AgreesWithTheEngineOnRandomTemplates) {
    for (std::uint64_t seed = 0; seed < 1000; ++seed) {
        support::Random random(seed);
        add(support::randomTemplate(random, 24, {}));
    }
    expectTheSame();
}

using RenderCorpusTest = ProgramTest;

TEST_F(RenderCorpusTest, EqualsTheEngineByteForByte) {
    const std::string json = R"({"a":"x","b":"<\u0000>","ab":true,"c":[{"a":"y"},null,"z"]})";
    const kel::Stencilor::Context context(kel::Stencilor::valueFromJsonText(json));
    folder.writeFile("values.json", json);
    for (const char* const file : {"a", "b", "ab"}) {
        folder.writeFile(file, "[{{ a }}\xE2{{ none }}]");
    }
    for (std::uint64_t seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        support::Random random(seed);
        const std::string text = support::randomTemplate(random, 24, {});
        folder.writeFile("page", text);
        kel::String errors;
        const kel::String expected = buildOutput(kel::String(text), context, errors);
        const Outcome outcome = runStencilor("render page values.json");
        EXPECT_EQ(outcome.output, expected.str());
        EXPECT_TRUE(errors.empty() || outcome.status != 0);
    }
}

} // namespace
} // namespace program
