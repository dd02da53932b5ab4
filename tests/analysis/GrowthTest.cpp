#include "../support/Environment.h"
#include "../support/FailingAllocation.h"
#include "../support/SmallStackThread.h"
#include "../support/Test.h"
#include "MemoryReader.h"

#include <libStencilor/Value.h>
#include <libStencilorAnalysis/check/ContextCheck.h>
#include <libStencilorAnalysis/check/SyntaxCheck.h>
#include <libStencilorAnalysis/check/TextCheck.h>
#include <libStencilorAnalysis/check/UnusedNames.h>
#include <libStencilorAnalysis/editor/Blocks.h>
#include <libStencilorAnalysis/editor/Names.h>
#include <libStencilorAnalysis/finding/FindingFormat.h>
#include <libStencilorAnalysis/names/Dependencies.h>
#include <libStencilorAnalysis/names/NameList.h>
#include <libStencilorAnalysis/names/Skeleton.h>
#include <libStencilorAnalysis/template/TemplateTree.h>

// Counts the work of the analysis, because times depend on the machine. This program has a copy of
// it that reports each basic block that it enters, and functions that process many bytes at a time
// are redirected to this file. Sixteen bytes count as a block.

namespace {

std::uint64_t steps = 0;

} // namespace

extern "C" {

void __sanitizer_cov_trace_pc() {
    ++steps;
}

void* __real_memchr(const void* text, int byte, std::size_t size);
int __real_memcmp(const void* one, const void* other, std::size_t size);
void* __real_memcpy(void* to, const void* from, std::size_t size);
void* __real_memmove(void* to, const void* from, std::size_t size);

void* __wrap_memchr(const void* text, int byte, std::size_t size) {
    void* const found = __real_memchr(text, byte, size);
    const auto* const end = static_cast<const char*>(found);
    const std::size_t read =
        found == nullptr ? size : static_cast<std::size_t>(end - static_cast<const char*>(text));
    steps += read / 16;
    return found;
}

int __wrap_memcmp(const void* one, const void* other, std::size_t size) {
    steps += size / 16;
    return __real_memcmp(one, other, size);
}

void* __wrap_memcpy(void* to, const void* from, std::size_t size) {
    steps += size / 16;
    return __real_memcpy(to, from, size);
}

void* __wrap_memmove(void* to, const void* from, std::size_t size) {
    steps += size / 16;
    return __real_memmove(to, from, size);
}
}

namespace kel::Stencilor::Analysis {
namespace {

using Texts = std::map<std::string, std::string>;

/// The minimum sizes, unless the largest size is smaller.
constexpr std::size_t smallest = 800;

std::string repeat(std::size_t count, const std::string& text) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

/// `#` is replaced by the number of the repetition, `$` by the next one.
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

/// Files that each include the next one with `text`.
Texts chain(std::size_t count, const std::string& text) {
    Texts texts;
    for (std::size_t i = 0; i < count; ++i) {
        std::string numbered;
        for (const char byte : text) {
            numbered += byte == '$' ? std::to_string(i + 1) : std::string(1, byte);
        }
        texts["f" + std::to_string(i)] = numbered;
    }
    texts["f" + std::to_string(count)] = "{{ last }}";
    return texts;
}

struct Case {
    const char* name;
    std::size_t size; ///< the largest
    std::function<Texts(std::size_t)> make;
    std::string except{}; ///< commands that take longer, like a render
};

Texts page(std::string text) {
    return {{"f0", std::move(text)}};
}

/// The template is the file `f0`.
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
     },
     "check with a context, render"},
    {"loops over members of each other", 1'000'000,
     [](std::size_t n) {
         return page(repeatNumbered(n, "{% for a$ in a#.b %}") + "{{ x }}" +
                     repeat(n, "{% endfor %}"));
     }},
    {"unclosed blocks", 1'000'000, [](std::size_t n) { return page(repeat(n, "{% if a %}")); }},
    {"different names", 100'000, [](std::size_t n) { return page(repeatNumbered(n, "{{ a# }}")); }},
    {"a name with many dots", 1'000'000,
     [](std::size_t n) {
         return page("{% for a in b %}{{ a" + repeat(n, ".a") + " }}{% endfor %}");
     }},
    {"findings on one line", 100'000,
     [](std::size_t n) { return page(repeatNumbered(n, R"({% include "none#" %} )")); }},
    {"one missing file", 100'000,
     [](std::size_t n) { return page(repeat(n, R"({% include "none" %} )")); }},
    {"files that include each other in a chain", 100'000,
     [](std::size_t n) { return chain(n, R"({{ n }}{% include "f$" %})"); }},
    {"files that each end the cycle", 10'000,
     [](std::size_t n) { return chain(n, R"({% include "f$" %}{% include "f0" %})"); }},
    {"diamonds of includes", 20,
     [](std::size_t n) { return chain(n, R"({% include "f$" %}{% include "f$" %}{{ n }})"); },
     "render"},
    {"diamonds of includes in loops", 20,
     [](std::size_t n) {
         return chain(n, R"({% for a in as$ %}{% include "f$" %}{% endfor %})"
                         R"({% for b in bs$ %}{% include "f$" %}{% endfor %}{{ n }})");
     }},
};

/// Runs the commands on the template.
struct Command {
    const char* name;
    std::function<std::string(TemplateFiles&, const TemplateFile&)> run;
};

Context makeContext() {
    return Context(Value{{"yes", true}, {"list", Value::list({Value{{"y", "z"}}})}, {"b", "text"}});
}

std::vector<Finding> check(TemplateFiles& files, const TemplateFile& file, bool withContext) {
    CheckReport report;
    checkSyntax(files, file, report);
    if (withContext && !file.fault().isPresent()) {
        const auto faults =
            findContextFaults(files, file, makeContext(), ContextWalk::Extent::Whole);
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
    {"check for unused names",
     [](auto& files, auto& file) {
         UnusedNames names;
         survey(files, file, names);
         return std::to_string(names.find(makeContext()).size());
     }},
    {"render",
     [](auto& files, auto& file) {
         std::vector<Finding> found;
         if (!file.fault().isPresent()) {
             found = findContextFaults(files, file, makeContext(), ContextWalk::Extent::Rendered);
         }
         checkText(file, found);
         return formatText(found);
     }},
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
    {"names and blocks for editors",
     [](TemplateFiles&, const TemplateFile& file) {
         std::size_t found = findBlocks(file).size();
         for (std::size_t i = 0; i < file.parts().size(); ++i) {
             found += prefixOf(file, i).end;
         }
         if (!file.parts().empty() && file.parts()[0].kind == SyntaxElement::Kind::For) {
             found += findVariable(file, 0).size() + whyNotRename(file, 0, "new").size();
         }
         return std::to_string(found);
     }},
};

struct Cost {
    std::uint64_t steps;
    std::size_t memory; ///< the peak in bytes
    std::size_t output; ///< bytes
};

Cost measure(const Texts& texts, const Command& command) {
    Cost cost{};
    support::runWithStack(std::size_t{256} * 1024, [&] {
        MemoryReader reader(texts);
        const support::AllocatedMemory allocated;
        steps = 0;
        TemplateFiles files(reader);
        const std::string output = command.run(files, files.add({"f0", "f0", texts.at("f0")}));
        cost = {steps, allocated.most(), output.size()};
    });
    return cost;
}

/// Four times the input may cost six times as much, because of sorting and doubling blocks, or in
/// proportion to the output. Quadratic cost would be sixteen times as much.
void expectLinear(const Cost& whole, const Cost& quarter) {
    const std::uint64_t growth =
        std::max<std::uint64_t>(6, 2 * whole.output / std::max<std::size_t>(quarter.output, 1));
    EXPECT_GT(whole.steps, 0u);
    EXPECT_LT(whole.steps, growth * quarter.steps + 10'000);
    EXPECT_LT(whole.memory, growth * quarter.memory + 1'000'000);
    EXPECT_LT(whole.output, 8 * quarter.output + 100'000'000);
}

// STENCILOR_SIZE is the percentage of the full sizes; the preset "exhaustive" has 100.
TEST(Analysis, DoesWorkLinearInWhatItReadsAndWritesOnASmallStack) {
    const std::uint64_t percent = support::numberFromEnvironment("STENCILOR_SIZE", 0);
    for (const Case& one : cases) {
        const std::size_t size = std::max(one.size * percent / 100, std::min(one.size, smallest));
        const Texts whole = one.make(size);
        const Texts quarter = one.make(size / 4);
        for (const Command& command : commands) {
            if (one.except.find(command.name) != std::string::npos) {
                continue;
            }
            SCOPED_TRACE(std::string(one.name) + ", " + command.name);
            expectLinear(measure(whole, command), measure(quarter, command));
        }
    }
}

} // namespace
} // namespace kel::Stencilor::Analysis
