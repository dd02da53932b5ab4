#include "../support/Build.h"
#include "../support/Environment.h"
#include "../support/SmallStackThread.h"
#include "MemoryReader.h"

#include <libStencilor/Value.h>
#include <libStencilorAnalysis/check/ContextCheck.h>
#include <libStencilorAnalysis/check/SyntaxCheck.h>
#include <libStencilorAnalysis/finding/FindingFormat.h>
#include <libStencilorAnalysis/names/Dependencies.h>
#include <libStencilorAnalysis/names/NameList.h>
#include <libStencilorAnalysis/names/Skeleton.h>
#include <libStencilorAnalysis/template/TemplateTree.h>

#include <gtest/gtest.h>

#include <ctime>
#include <functional>
#include <string>
#include <vector>

namespace kel::Stencilor::Analysis {
namespace {

using Texts = std::map<std::string, std::string>;

std::string repeat(std::size_t count, const std::string& text) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

/// `#` becomes the number of the repetition, `$` the one after it.
std::string repeatNumbered(std::size_t count, const std::string& text) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i) {
        for (const char byte : text) {
            all += byte == '#'   ? std::to_string(i)
                   : byte == '$' ? std::to_string(i + 1)
                                 : std::string(1, byte);
        }
    }
    return all;
}

/// Files that each include the next one, as `text` does.
Texts chain(std::size_t count, const std::string& text) {
    Texts texts;
    for (std::size_t i = 0; i < count; ++i) {
        std::string numbered;
        for (const char byte : text) {
            numbered += byte == '$' ? std::to_string(i + 1) : std::string(1, byte);
        }
        texts[std::to_string(i)] = numbered;
    }
    texts[std::to_string(count)] = "{{ last }}";
    return texts;
}

struct Case {
    const char* name;
    std::size_t size; ///< the largest; above 100 a part of it is tested
    std::function<Texts(std::size_t)> make;
};

Texts page(std::string text) {
    return {{"0", std::move(text)}};
}

/// The files are named by numbers, the template is `0`.
const std::vector<Case> cases = {
    {"lines", 1'000'000, [](std::size_t n) { return page(repeat(n, "text {{ a }}\n")); }},
    {"one line", 500'000, [](std::size_t n) { return page(repeat(n, "some text {{ a }}\u00E9")); }},
    {"nested conditions", 1'000'000,
     [](std::size_t n) {
         return page(repeat(n, "{% if yes %}") + "{{ x }}" + repeat(n, "{% endif %}"));
     }},
    {"nested loops", 1'000'000,
     [](std::size_t n) {
         return page(repeat(n, "{% for a in list %}") + "{{ x }}" + repeat(n, "{% endfor %}"));
     }},
    {"nested loops of different variables", 1'000'000,
     [](std::size_t n) {
         return page(repeatNumbered(n, "{% for a# in list %}") + "{{ x }}" +
                     repeat(n, "{% endfor %}"));
     }},
    {"loops over members of each other", 1'000'000,
     [](std::size_t n) {
         return page(repeatNumbered(n, "{% for a$ in a#.b %}") + "{{ x }}" +
                     repeat(n, "{% endfor %}"));
     }},
    {"blocks that are not closed", 1'000'000,
     [](std::size_t n) { return page(repeat(n, "{% if a %}")); }},
    {"different names", 100'000, [](std::size_t n) { return page(repeatNumbered(n, "{{ a# }}")); }},
    {"a name of many dots", 1'000'000,
     [](std::size_t n) {
         return page("{% for a in b %}{{ a" + repeat(n, ".a") + " }}{% endfor %}");
     }},
    {"findings on one line", 100'000,
     [](std::size_t n) { return page(repeatNumbered(n, R"({% include "none#" %} )")); }},
    {"one missing file", 100'000,
     [](std::size_t n) { return page(repeat(n, R"({% include "none" %} )")); }},
    {"files that include each other in a chain", 100'000,
     [](std::size_t n) { return chain(n, R"({{ n }}{% include "$" %})"); }},
    {"files that each end the cycle", 10'000,
     [](std::size_t n) { return chain(n, R"({% include "$" %}{% include "0" %})"); }},
    {"diamonds of inclusions", 20,
     [](std::size_t n) { return chain(n, R"({% include "$" %}{% include "$" %}{{ n }})"); }},
    {"diamonds of inclusions in loops", 20,
     [](std::size_t n) {
         return chain(n, R"({% for a in as$ %}{% include "$" %}{% endfor %})"
                         R"({% for b in bs$ %}{% include "$" %}{% endfor %}{{ n }})");
     }},
};

/// What the commands make of the template.
struct Command {
    const char* name;
    std::function<std::string(TemplateFiles&, const TemplateFile&)> run;
};

std::vector<Finding> check(TemplateFiles& files, const TemplateFile& file, bool withContext) {
    CheckReport report;
    checkSyntax(files, file, report);
    if (withContext && !file.fault().isPresent()) {
        const Context context(
            Value{{"yes", true}, {"list", Value::list({Value{{"y", "z"}}})}, {"b", "text"}});
        const auto faults = findContextFaults(files, file, context, ContextWalk::Extent::Whole);
        report.findings.insert(report.findings.end(), faults.begin(), faults.end());
    }
    return sortFindings(std::move(report));
}

const std::vector<Command> commands = {
    {"check", [](auto& files, auto& file) { return formatText(check(files, file, false)); }},
    {"check as JSON",
     [](auto& files, auto& file) { return formatJson(check(files, file, false)); }},
    {"check as SARIF",
     [](auto& files, auto& file) {
         return formatSarif(check(files, file, false),
                            [](const std::string& name) { return name; });
     }},
    {"check with a context",
     [](auto& files, auto& file) { return formatText(check(files, file, true)); }},
    {"names",
     [](auto& files, auto& file) {
         NameList list;
         const std::string findings = formatText(survey(files, file, list));
         return findings + list.formatText();
     }},
    {"names as JSON",
     [](auto& files, auto& file) {
         NameList list;
         survey(files, file, list);
         return list.formatJson();
     }},
    {"skeleton",
     [](auto& files, auto& file) {
         Skeleton skeleton;
         survey(files, file, skeleton);
         return skeleton.formatJson();
     }},
    {"deps",
     [](auto& files, auto& file) {
         Dependencies dependencies(file);
         survey(files, file, dependencies);
         return std::to_string(dependencies.names().size());
     }},
    {"tree", [](TemplateFiles&, const TemplateFile& file) { return formatTree(file); }},
};

struct Cost {
    double seconds; ///< of the processor, so that other programs do not count
    std::size_t bytes;
};

Cost measure(const Texts& texts, const Command& command) {
    Cost cost{};
    support::runWithStack(std::size_t{256} * 1024, [&] {
        MemoryReader reader(texts);
        const std::clock_t begin = std::clock();
        TemplateFiles files(reader);
        const std::string output = command.run(files, files.add({"0", "0", texts.at("0")}));
        cost = {static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC, output.size()};
    });
    return cost;
}

/// Four times as much takes about four times as long; what is quadratic would take sixteen times. A
/// machine that was busy with something else meanwhile gets another try.
template <typename Whole, typename Quarter>
void expectLinear(Whole whole, Quarter quarter) {
    Cost cost{};
    Cost less{};
    for (int tries = 5; tries > 0; --tries) {
        cost = whole();
        less = quarter();
        if (cost.seconds < 0.2 || cost.seconds < 9 * less.seconds) {
            break;
        }
    }
    EXPECT_LT(cost.bytes, 100'000'000 + 8 * less.bytes);
    EXPECT_TRUE(cost.seconds < 0.2 || cost.seconds < 9 * less.seconds)
        << cost.seconds << " s, and a quarter of it in " << less.seconds << " s";
}

TEST(Analysis, TakesTimeLinearInWhatItReadsAndWritesOnASmallStack) {
    const std::uint64_t percent =
        support::numberFromEnvironment("STENCILOR_SIZE", support::slow ? 1 : 2);
    for (const Case& one : cases) {
        const std::size_t size = one.size > 100 ? one.size * percent / 100 : one.size;
        const Texts whole = one.make(size);
        const Texts quarter = one.make(size / 4);
        for (const Command& command : commands) {
            SCOPED_TRACE(std::string(one.name) + ", " + command.name);
            expectLinear([&] { return measure(whole, command); },
                         [&] { return measure(quarter, command); });
        }
    }
}

} // namespace
} // namespace kel::Stencilor::Analysis
