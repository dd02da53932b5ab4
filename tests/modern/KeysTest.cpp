#include "../support/oracles/Random.h"
#include "Rendering.h"

#include <libStencilor/Stencilor.h>
#include <libStencilor/modern/loop_variables.h>
#include <libStencilor/modern/parsed_template.h>

namespace support {
namespace {

using kel::Stencilor::internal::loop_variables;
using kel::Stencilor::internal::name_table;
using kel::Stencilor::internal::parsed_template;
using testing::ElementsAre;

std::vector<std::uint32_t> prefixesOf(loop_variables& variables, std::string_view name) {
    std::vector<std::uint32_t> lengths = {99}; // replaced
    variables.collectPrefixes(name, lengths);
    return lengths;
}

TEST(LoopVariables, AreStrippedFromTheInnermostOutwards) {
    loop_variables variables;
    EXPECT_THAT(prefixesOf(variables, "a.b.c"), ElementsAre(0));
    variables.enter("a.b");
    EXPECT_THAT(prefixesOf(variables, "a.b.c"), ElementsAre(4, 0));
    EXPECT_THAT(prefixesOf(variables, "a.bc"), ElementsAre(0));
    EXPECT_THAT(prefixesOf(variables, "a.b"), ElementsAre(0));
    EXPECT_THAT(prefixesOf(variables, "a.b."), ElementsAre(4, 0));
    variables.enter("a");
    EXPECT_THAT(prefixesOf(variables, "a.b.c"), ElementsAre(2, 4, 0));
    variables.enter("a.b");
    EXPECT_THAT(prefixesOf(variables, "a.b.c"), ElementsAre(4, 2, 0));
    variables.enter("other");
    EXPECT_THAT(prefixesOf(variables, "a.b.c"), ElementsAre(0, 4, 2));
    variables.leave();
    variables.leave();
    EXPECT_THAT(prefixesOf(variables, "a.b.c"), ElementsAre(2, 4, 0));
    variables.leave();
    variables.leave();
    EXPECT_THAT(prefixesOf(variables, "a.b.c"), ElementsAre(0));
}

/// The documented rule: each loop's variable in turn, then the whole name.
std::vector<std::uint32_t> obviousPrefixes(const std::vector<std::string>& loops,
                                           std::string_view name) {
    std::vector<std::uint32_t> lengths;
    const auto add = [&lengths](std::size_t length) {
        if (std::find(lengths.begin(), lengths.end(), length) == lengths.end()) {
            lengths.push_back(static_cast<std::uint32_t>(length));
        }
    };
    for (auto loop = loops.rbegin(); loop != loops.rend(); ++loop) {
        add(name.starts_with(*loop + '.') ? loop->size() + 1 : 0);
    }
    add(0);
    return lengths;
}

std::string randomDotted(Random& random) {
    std::string name(1, random.oneIn(4) ? 'b' : 'a');
    for (std::size_t more = random.below(5); more > 0; --more) {
        name += random.oneIn(5) ? "b" : random.oneIn(5) ? ".." : ".a";
    }
    return name;
}

TEST(LoopVariables, AreStrippedAsTheRuleIsWritten) {
    Random random(1);
    loop_variables variables;
    std::vector<std::string> loops;
    for (int turn = 0; turn < 50'000; ++turn) {
        if (loops.size() < 12 && !random.oneIn(3)) {
            loops.push_back(randomDotted(random));
            variables.enter(loops.back());
        } else if (!loops.empty() && random.oneIn(2)) {
            loops.pop_back();
            variables.leave();
        }
        const std::string name = randomDotted(random) + (random.oneIn(9) ? "." : "");
        ASSERT_EQ(prefixesOf(variables, name), obviousPrefixes(loops, name))
            << name << " in " << testing::PrintToString(loops);
    }
}

/// A template of nested loops with dotted variables around dotted names.
std::string randomLoops(Random& random, int depth) {
    std::string text = "{{ " + randomDotted(random) + " }},";
    if (depth > 0) {
        for (std::size_t loop = random.below(3); loop > 0; --loop) {
            text += "{% for " + randomDotted(random) + " in list %}" +
                    randomLoops(random, depth - 1) + "{% endfor %}";
        }
    }
    return text + "{{ " + randomDotted(random) + " }};";
}

TEST(Keys, FindWhatBuildOutputFinds) {
    Random random(2);
    for (int turn = 0; turn < 3'000; ++turn) {
        Value element{};
        Value root{};
        for (int key = 0; key < 6; ++key) {
            element.set(kel::String(randomDotted(random)), "e" + std::to_string(key));
            root.set(kel::String(randomDotted(random)), "r" + std::to_string(key));
        }
        root.set("list", Value::list({element, nullptr}));
        const Context context(root);
        const std::string text = randomLoops(random, 4);
        ASSERT_EQ(Template(text).render(context).text, kel::Stencilor::buildOutput(text, context))
            << text;
    }
}

/// The memory for the names of a template.
struct Kept {
    std::size_t bytes = 0;
    std::size_t prefixes = 0;
};

Kept keptFor(const parsed_template& parsed, std::uint32_t names) {
    Kept kept;
    std::vector<const kel::String*> seen;
    for (std::uint32_t number = 0; number < names; ++number) {
        const name_table& table = *parsed.names;
        const auto keys = table.keptKeys(table.keysOf(table.use(number)));
        if (std::find(seen.begin(), seen.end(), keys.data()) != seen.end()) {
            continue;
        }
        seen.push_back(keys.data());
        kept.prefixes += table.prefixes(table.keysOf(table.use(number))).size();
        for (const kel::String& key : keys) {
            kept.bytes += key.size();
        }
    }
    return kept;
}

// Even for many names with many dots inside many loops, the memory is bounded by the template. A
// search begins where the last element had the key.
TEST(Keys, AreFoundWhereverAnElementHasThem) {
    for (const std::string& key :
         {std::string("k"), std::string("eightlng"), std::string(17, 'k')}) {
        Value elements = Value::list({});
        std::string expected;
        for (const int before : {0, 3, 3, 1, 8, 300, 255, 256, 0, 9}) {
            Value element{{"other" + key, "x"}};
            for (int number = 0; number < before; ++number) {
                element.set("a" + std::to_string(number), "filler");
            }
            elements.add(element);
            element.set(key, std::to_string(before));
            elements.add(element);
            expected += "root " + std::to_string(before) + " ";
        }
        const Context context(Value{{"list", elements}, {key, "root"}});
        const std::string text =
            "{% for e in list %}{{ e." + key + " }} {% endfor %}{{ " + key + " }}";
        expected += "root";
        EXPECT_EQ(Template(text).render(context).text.str(), expected);
        EXPECT_EQ(kel::Stencilor::buildOutput(text, context).str(), expected);
    }
}

TEST(Keys, TakeNoMoreThanTheTemplate) {
    for (const int count : {10, 50, 200}) {
        SCOPED_TRACE(count);
        std::string text;
        std::string variable = "a";
        for (int loop = 0; loop < count; ++loop, variable += ".a") {
            text += "{% for " + variable + " in list %}";
        }
        for (int name = 0; name < count; ++name) {
            text += "{{ " + variable + ".n" + std::to_string(name) + " }}";
        }
        for (int loop = 0; loop < count; ++loop) {
            text += "{% endfor %}";
        }
        const parsed_template parsed{kel::String(text), kel::String()};
        ASSERT_TRUE(parsed.names);
        const Kept kept = keptFor(parsed, static_cast<std::uint32_t>(2 * count));
        EXPECT_LE(kept.bytes, text.size());
        EXPECT_LE(kept.prefixes, text.size());
    }
}

TEST(Keys, AreSharedByNamesThatAreWrittenAndTriedAlike) {
    const parsed_template parsed{
        kel::String("{{ a.b }}{{ a.b }}{% for a in l %}{{ a.b }}{{ a.b }}{% endfor %}{{ a.b }}"
                    "{% for c in l %}{{ a.b }}{% endfor %}"),
        kel::String()};
    ASSERT_TRUE(parsed.names);
    std::vector<std::uint32_t> lists;
    for (std::uint32_t number = 0; number < 8; ++number) {
        lists.push_back(parsed.names->use(number).keys);
    }
    EXPECT_THAT(lists, ElementsAre(0, 0, 1, 2, 2, 0, 1, 0));
}

} // namespace
} // namespace support
