#include "../support/Build.h"
#include "../support/Context.h"
#include "../support/Deletions.h"
#include "../support/FailingAllocation.h"
#include "../support/LogRecorder.h"
#include "../support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <new>
#include <string>

// What is leaked or deleted twice on the way is for the address sanitizer to say.

namespace support {
namespace {

using testing::AnyOf;
using testing::IsEmpty;

/// Calls `action` with each of its allocations failing in turn, each time on a fresh `make()`, and
/// `check` on what is left where one failed.
template <typename Make, typename Action, typename Check>
void failEachAllocation(Make make, Action action, Check check) {
    bool failed = true;
    for (int count = 0; failed; ++count) {
        auto subject = make();
        {
            const FailingAllocation failure(count);
            try {
                action(*subject);
            } catch (const std::bad_alloc&) {
            }
            failed = failure.happened();
        }
        if (failed) {
            SCOPED_TRACE(count);
            check(*subject);
        } else {
            EXPECT_GT(count, 0) << "nothing was allocated at all";
        }
    }
}

class ExhaustedMemory : public testing::Test {
  protected:
    void SetUp() override {
        if (threadSanitized) {
            GTEST_SKIP() << "the thread sanitizer does not let allocations fail";
        }
    }
};

const kel::String longKey(std::string(100, 'k'));

TEST_F(ExhaustedMemory, LeavesAValueWithoutTheEntryThatWasInserted) {
    ContextBase child;
    failEachAllocation([] { return std::make_unique<ContextDictionary>(); },
                       [&child](ContextDictionary& value) {
                           value.insert(longKey, &child);
                           value[longKey] = nullptr;
                       },
                       [](ContextDictionary& value) { EXPECT_EQ(value.size(), 0u); });
}

TEST_F(ExhaustedMemory, LeavesAListWithoutTheElementThatWasAdded) {
    ContextBase child;
    failEachAllocation([] { return std::make_unique<ContextIterable>(); },
                       [&child](ContextIterable& value) {
                           value.add(&child);
                           value = ContextIterable();
                       },
                       [](ContextIterable& value) { EXPECT_EQ(value.size(), 0u); });
}

TEST_F(ExhaustedMemory, LeavesTheTargetOfAnAssignmentAsItWas) {
    ContextBase shared;
    ContextIterable source;
    source.insert("a", &shared);
    source.insert("b", &shared);
    source.add(&shared);
    failEachAllocation(
        [] {
            auto target = std::make_unique<ContextIterable>();
            target->insert("former", nullptr);
            target->add(nullptr);
            target->add(nullptr);
            return target;
        },
        [&source](ContextIterable& target) {
            target = source;
            target = ContextIterable();
        },
        [](ContextIterable& target) {
            EXPECT_TRUE(target.containsKey("former"));
            EXPECT_FALSE(target.containsKey("a"));
            EXPECT_EQ(target.size(), 2u);
        });
    source = ContextIterable();
}

/// A copy that fails half way must not delete what it shares with its source.
template <typename Value>
void expectCopyToLeaveChildrenAlone(Value& source) {
    Deletions deletions;
    Logged<ContextBase> child(deletions, "child");
    source.insert("a", &child);
    source.insert("b", &child);
    const auto release = [](Value& value) {
        value.insert("a", nullptr);
        value.insert("b", nullptr);
    };
    failEachAllocation([] { return std::make_unique<int>(); },
                       [&](int&) {
                           Value copy(source);
                           release(copy);
                       },
                       [&deletions](int&) { EXPECT_THAT(deletions, IsEmpty()); });
    release(source);
    EXPECT_THAT(deletions, IsEmpty());
}

TEST_F(ExhaustedMemory, LeavesTheChildrenOfACopiedValueAlone) {
    ContextBase base;
    expectCopyToLeaveChildrenAlone(base);
    ContextString string(std::string(100, 's'));
    expectCopyToLeaveChildrenAlone(string);
    ContextBoolean boolean(true);
    expectCopyToLeaveChildrenAlone(boolean);
    ContextDictionary dictionary;
    expectCopyToLeaveChildrenAlone(dictionary);
    ContextIterable list;
    expectCopyToLeaveChildrenAlone(list);
}

TEST_F(ExhaustedMemory, LeavesThePointersWithTheCallerOfABuilder) {
    Deletions deletions;
    Logged<ContextBase> child(deletions, "child");
    const Entries entries = {{"a", &child}, {longKey, &child}};
    const Elements elements = {&child, nullptr, &child};
    const auto unused = [] { return std::make_unique<int>(); };
    const auto check = [&deletions](int&) { EXPECT_THAT(deletions, IsEmpty()); };
    const auto release = [](ContextBase* value) {
        value->insert("a", nullptr);
        value->insert(longKey, nullptr);
        delete value;
    };
    failEachAllocation(
        unused, [&](int&) { release(ContextFactory::buildDictionary(entries)); }, check);
    failEachAllocation(
        unused, [&](int&) { release(ContextFactory::buildBoolean(true, entries)); }, check);
    failEachAllocation(
        unused,
        [&](int&) {
            ContextIterable* const list = ContextFactory::buildIterable(elements);
            *list = ContextIterable();
            delete list;
        },
        check);
    EXPECT_THAT(deletions, IsEmpty());
}

// Taking a tree apart gets along without memory, so a failure there changes nothing.
TEST_F(ExhaustedMemory, PassesThroughARenderingThatFreesEverything) {
    const TemporaryFolder folder;
    const WorkingFolder working(folder.path());
    folder.writeFile("part", "{{ name }}{% if yes %}included{% endif %}{{ missing }}");
    const Root root({
        {"yes", truth(true)},
        {"users", list({dictionary({{"name", text(std::string(200, 'n'))}}), nullptr})},
        {"name", text("root")},
    });
    const std::string input =
        "a text that is longer than a few bytes {{ name }}{{ missing }}"
        "{% for user in users %}{{ user.name }}{% if yes %}{% include \"part\" %}{% else %}x"
        "{% endif %}{% endfor %}{% if missing %}{% endif %}";
    const Rendered expected = render(input, root);
    ASSERT_NE(expected.output.find("included"), std::string::npos);
    failEachAllocation([] { return std::make_unique<Rendered>(); },
                       [&](Rendered& rendered) { rendered = render(input, root); },
                       [&](Rendered& rendered) {
                           EXPECT_THAT(rendered, AnyOf(Rendered(), expected));
                           EXPECT_EQ(render(input, root), expected);
                       });
}

TEST_F(ExhaustedMemory, PassesThroughTheParsingOfARejectedTemplate) {
    const Root root;
    const std::string input = "a text that is longer than a few bytes {% if a %}{% for b in c %}x"
                              "{% endfor %}{% else %}y{% endif %}{{ d }}{% if e %}{{ f }}";
    const Rendered expected = render(input, root);
    failEachAllocation(
        [] { return std::make_unique<Rendered>(); },
        [&](Rendered& rendered) { rendered = render(input, root); },
        [&](Rendered& rendered) { EXPECT_THAT(rendered, AnyOf(Rendered(), expected)); });
}

// The recorder itself may be what runs out of memory, and a record is lost then: so the scopes are
// counted, without memory.
TEST_F(ExhaustedMemory, ClosesEveryTracedScopeInnermostFirst) {
    const TemporaryFolder folder;
    const WorkingFolder working(folder.path());
    folder.writeFile("part", "{% if yes %}{{ missing }}{% endif %}");
    const Root root(
        {{"yes", truth(true)}, {"two", listOf(2)}, {"name", text(std::string(200, 'n'))}});
    const std::string input = "{% if yes %}{% for i in two %}{{ name }}{% include \"part\" %}"
                              "{% endfor %}{% endif %}";
    const LogRecorder recorder(kel::LoggerPriority::PRIORITY_TRACE);
    std::array<int, 32> lines = {}; // of the scopes that are open
    unsigned int depth = 0;
    kel::LogFactory::setSink([&lines, &depth](const kel::LogRecord& record) {
        if (record.kind == kel::LogRecord::Kind::ScopeEntered) {
            EXPECT_EQ(record.depth, depth);
            lines.at(depth++) = record.line;
        } else {
            EXPECT_EQ(record.depth, --depth);
            EXPECT_EQ(record.line, lines.at(depth));
        }
    });
    failEachAllocation([] { return std::make_unique<Rendered>(); },
                       [&](Rendered& rendered) { rendered = render(input, root); },
                       [&depth](Rendered&) { EXPECT_EQ(depth, 0u); });
}

} // namespace
} // namespace support
