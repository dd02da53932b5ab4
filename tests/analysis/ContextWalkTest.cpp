#include "../support/Build.h"
#include "../support/Deletions.h"
#include "../support/Environment.h"
#include "../support/FailingAllocation.h"
#include "../support/TemporaryFolder.h"
#include "../support/Test.h"
#include "../support/oracles/RandomContext.h"
#include "../support/oracles/RandomTemplate.h"
#include "FileReader.h"

#include <libStencilor/Stencilor.h>
#include <libStencilor/Value.h>
#include <libStencilorAnalysis/check/ContextWalk.h>

namespace kel::Stencilor::Analysis {
namespace {

/// The engine's message for an occurrence.
std::string messageOf(const Occurrence& found) {
    const std::string name(found.file->slice(found.part->name));
    const std::string list(found.file->slice(found.part->list));
    switch (found.problem) {
    case Problem::NoString:
        return "Could not find expected replacement named \"" + name + "\"\n";
    case Problem::NotString:
        return "The replacement is not of type String for \"" + name + "\"";
    case Problem::NoBoolean:
        return "Could not find expected boolean named \"" + name + "\n";
    case Problem::NotBoolean:
        return "Expected named \"" + name + "\" to be of type ContextBoolean\n";
    case Problem::NoList:
        return "Could not find expected for-expression named \"" + list + "\"\n";
    case Problem::NotList:
        return "Expected named \"" + list + "\" to be of type ContextIterable\n";
    case Problem::NoFile:
        return found.inclusion->answer == TemplateReader::Answer::Missing
                   ? "Could not include file \"" + name + "\", file doesn't exist"
                   : "Could not load file \"" + name + "\"";
    case Problem::RejectedFile:
    case Problem::OtherLoop:
    case Problem::TooDeep:
    case Problem::TooLong:
        break;
    }
    return "";
}

const std::vector<std::string> paths = {"f0", "f1", "f2", "parts/f3", "missing", "parts"};

// Each file includes only those after it, so that none includes itself.
void writeFiles(support::TemporaryFolder& folder, std::uint64_t seed) {
    support::Random random(seed);
    for (std::size_t file = 0; file < 4; ++file) {
        const std::vector<std::string> after(paths.begin() + static_cast<std::ptrdiff_t>(file) + 1,
                                             paths.end());
        folder.writeFile(paths[file], support::randomTemplate(random, 8, after));
    }
}

// The engine drops messages in included files, so those are compared when the files are rendered on
// their own.
TEST(ContextWalk, ReportsWhatTheEngineReports) {
    support::TemporaryFolder folder;
    const support::WorkingFolder inside(folder.path());
    folder.makeFolder("parts");
    const std::uint64_t first = support::numberFromEnvironment("STENCILOR_SEED", 0);
    const std::uint64_t last = first + support::numberFromEnvironment("STENCILOR_CASES", 2000);
    std::uint64_t withMessages = 0;
    for (std::uint64_t seed = first; seed < last && !HasFailure(); ++seed) {
        SCOPED_TRACE("STENCILOR_SEED=" + std::to_string(seed) + " STENCILOR_CASES=1");
        if (seed == first || seed % 64 == 0) {
            writeFiles(folder, seed / 64);
        }
        support::Random random(seed);
        const auto context = support::randomContext(
            random, [](support::Random&, const std::string& text) { return kel::String(text); });
        const std::string text = support::randomTemplate(random, 24, paths);

        FileReader reader;
        TemplateFiles files(reader);
        const TemplateFile& file = files.add({"-", "", text});
        kel::String errors;
        buildOutput(kel::String(text), *context, errors);
        if (file.fault().isPresent()) {
            EXPECT_EQ(errors.str(),
                      "Could not build formatted output: Failed to parse input correctly.");
            continue;
        }
        std::string reported;
        ContextWalk walk(files, ContextWalk::Extent::Rendered, [&](const Occurrence& found) {
            reported += found.file == &file ? messageOf(found) : "";
        });
        walk.walk(file, *context);
        EXPECT_EQ(reported, errors.str()) << text;
        withMessages += errors.empty() ? 0u : 1u;
    }
    std::cout << "compared " << last - first << " renderings, " << withMessages
              << " with messages\n";
}

TEST(ContextWalk, EndsIfIncludesDoNot) {
    support::TemporaryFolder folder;
    const support::WorkingFolder inside(folder.path());
    const std::string text = "{% for a in l %}{% include \"page\" %}{{ x }}{% endfor %}";
    folder.writeFile("page", text);
    ContextDictionary context;
    ContextIterable* const list = ContextFactory::buildIterable();
    context.insert("l", list);
    for (int i = 0; i < 3; ++i) {
        auto* const element = ContextFactory::buildDictionary();
        element->insert("y", nullptr);
        list->add(element);
    }
    FileReader reader;
    TemplateFiles files(reader);
    std::vector<Problem> found;
    ContextWalk walk(files, ContextWalk::Extent::Rendered,
                     [&found](const Occurrence& one) { found.push_back(one.problem); });
    walk.walk(files.add({"-", "", text}), context);
    EXPECT_EQ(found, std::vector{Problem::TooDeep});
}

/// The problems of a template that a walk of so many steps finds.
std::vector<Problem> problemsWithin(std::uint64_t steps, const std::string& text,
                                    const ContextBase& context) {
    FileReader reader;
    TemplateFiles files(reader);
    std::vector<Problem> found;
    ContextWalk walk(files, ContextWalk::Extent::Whole,
                     [&found](const Occurrence& one) { found.push_back(one.problem); });
    walk.setLimits({.steps = steps});
    walk.walk(files.add({"-", "", text}), context);
    return found;
}

TEST(ContextWalk, EndsAtItsLimitWithoutMissingWhatItDidNotLookUp) {
    const std::string text = "{% for a in rows %}{% for b in a.cells %}{{ a.x }}{{ b.y }}"
                             "{% if is %}{{ z }}{% endif %}{% endfor %}{% endfor %}";
    const Value cells = Value::list({Value{{"y", ""}}, Value{{"y", ""}}});
    const Value row{{"x", ""}, {"cells", cells}};
    const Context context(Value{{"rows", Value::list({row, row})}, {"is", true}, {"z", "text"}});
    std::uint64_t steps = 0;
    for (; steps < 1000 && !problemsWithin(steps, text, context).empty(); ++steps) {
        EXPECT_EQ(problemsWithin(steps, text, context), std::vector{Problem::TooLong}) << steps;
    }
    EXPECT_GT(steps, 30u);
    EXPECT_LT(steps, 1000u);
}

TEST(ContextWalk, CountsTheBytesOfKeys) {
    const Context context(Value{{"l", Value::list({1, 2, 3})}});
    const std::string text = "{% for a in l %}{{ " + std::string(1 << 20, 'x') + " }}{% endfor %}";
    EXPECT_EQ(problemsWithin(1000, text, context), std::vector{Problem::TooLong});
    EXPECT_EQ(problemsWithin(10'000, text, context), std::vector(3, Problem::NoString));
}

TEST(ContextWalk, KeepsTheContextWhenMemoryIsExhausted) {
    if (support::threadSanitized) {
        GTEST_SKIP() << "the thread sanitizer does not let allocations fail";
    }
    bool failed = true;
    for (int count = 0; failed; ++count) {
        SCOPED_TRACE(count);
        support::Deletions deletions;
        {
            ContextDictionary context;
            context.insert("b", new support::Logged<ContextBoolean>(deletions, "b", true));
            FileReader reader;
            TemplateFiles files(reader);
            const TemplateFile& file = files.add({"-", "", "{% if b %}{{ x }}{% endif %}"});
            ContextWalk walk(files, ContextWalk::Extent::Rendered, [](const Occurrence&) {});
            const support::FailingAllocation failure(count);
            try {
                walk.walk(file, context);
            } catch (const std::bad_alloc&) {
            }
            failed = failure.happened();
            EXPECT_EQ(deletions, support::Deletions());
        }
        EXPECT_EQ(deletions, support::Deletions{"b"});
    }
}

TEST(ContextWalk, UsesNoCallStackForBlocks) {
    std::string text;
    constexpr int depth = 100000;
    for (int i = 0; i < depth; ++i) {
        text += "{% if b %}";
    }
    text += "{{ x }}";
    for (int i = 0; i < depth; ++i) {
        text += "{% endif %}";
    }
    ContextDictionary context;
    context.insert("b", ContextFactory::buildBoolean(true));
    FileReader reader;
    TemplateFiles files(reader);
    int found = 0;
    ContextWalk walk(files, ContextWalk::Extent::Whole, [&found](const Occurrence&) { ++found; });
    walk.walk(files.add({"-", "", text}), context);
    EXPECT_EQ(found, 1);
}

} // namespace
} // namespace kel::Stencilor::Analysis
