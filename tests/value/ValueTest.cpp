#include "../support/Build.h"
#include "../support/SmallStackThread.h"
#include "../support/Test.h"

#include <libStencilor/Value.h>

namespace kel::Stencilor {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Kind = Value::Kind;

static_assert(std::regular<Value>);
static_assert(std::is_nothrow_move_constructible_v<Value>);
static_assert(std::is_nothrow_move_assignable_v<Value>);

TEST(Value, HasTheKindOfItsSource) {
    const struct {
        const char* name;
        Value value;
        Kind kind;
    } cases[] = {
        {"nothing", Value(), Kind::Dictionary},
        {"empty braces", Value{}, Kind::Dictionary},
        {"a null pointer", nullptr, Kind::Null},
        {"a boolean", false, Kind::Boolean},
        {"a text", "text", Kind::Text},
        {"a text in braces", Value{"text"}, Kind::Text},
        {"a number", 7, Kind::Text},
        {"a raw text", Value::raw("<b>"), Kind::RawText},
        {"an empty list", Value::list(), Kind::List},
        {"a list", Value::list({1, "two", true}), Kind::List},
        {"a pair in braces", Value{{"a", "b"}}, Kind::Dictionary},
        {"a value in braces", Value{Value::list()}, Kind::List},
    };
    for (const auto& [name, value, kind] : cases) {
        EXPECT_EQ(value.kind(), kind) << name;
    }
}

TEST(Value, IsReadAsItsKind) {
    const Value value{{"b", true}, {"a", "text"}, {"c", Value::list({1, "two"})}};
    EXPECT_EQ(value.size(), 3u);
    EXPECT_THAT(value.keys(), ElementsAre("a", "b", "c"));
    ASSERT_NE(value.find("a"), nullptr);
    EXPECT_EQ(value.find("a")->text(), "text");
    EXPECT_TRUE(value.find("b")->isTrue());
    EXPECT_EQ(value.find("c")->size(), 2u);
    EXPECT_EQ(value.find("c")->at(0).text(), "1");
    EXPECT_EQ(value.find("c")->at(1).text(), "two");
    EXPECT_EQ(value.find("d"), nullptr);
    EXPECT_EQ(Value::raw("<b>").text(), "<b>");
    EXPECT_FALSE(Value(false).isTrue());
}

TEST(Value, IsEmptyAsAnotherKind) {
    const struct {
        const char* name;
        Value value;
    } cases[] = {{"null", nullptr},
                 {"a text", "true"},
                 {"a boolean", true},
                 {"a list", Value::list({"a"})},
                 {"a dictionary", Value{{"a", "b"}}}};
    for (const auto& [name, value] : cases) {
        SCOPED_TRACE(name);
        if (value.kind() != Kind::Boolean) {
            EXPECT_FALSE(value.isTrue());
        }
        if (value.kind() != Kind::Text) {
            EXPECT_TRUE(value.text().empty());
        }
        if (value.kind() != Kind::List) {
            EXPECT_THROW(value.at(0), std::out_of_range);
        }
        if (value.kind() != Kind::Dictionary) {
            EXPECT_EQ(value.find("a"), nullptr);
            EXPECT_THAT(value.keys(), IsEmpty());
        }
        if (value.kind() != Kind::List && value.kind() != Kind::Dictionary) {
            EXPECT_EQ(value.size(), 0u);
        }
    }
}

TEST(Value, HasNoItemPastTheEndOfAList) {
    const Value list = Value::list({"a"});
    EXPECT_EQ(list.at(0).text(), "a");
    EXPECT_THROW(list.at(1), std::out_of_range);
}

TEST(Value, KeepsTheLastOfEqualKeys) {
    EXPECT_EQ((Value{{"a", 1}, {"b", 2}, {"a", 3}}), (Value{{"a", 3}, {"b", 2}}));
}

TEST(Value, OrdersKeysByUnsignedByte) {
    EXPECT_THAT((Value{{"\u00E9", 1}, {"z", 2}, {"", 3}, {"Z", 4}}.keys()),
                ElementsAre("", "Z", "z", "\u00E9"));
}

TEST(Value, IsChangedByItsWriters) {
    Value dictionary;
    dictionary.set("a", 1);
    dictionary.set("a", 2);
    dictionary.set("b", Value::list());
    EXPECT_EQ(dictionary, (Value{{"a", 2}, {"b", Value::list()}}));
    Value list = Value::list();
    list.add("x");
    list.add(nullptr);
    EXPECT_EQ(list, Value::list({"x", nullptr}));
}

TEST(Value, CanContainACopyOfItself) {
    Value dictionary{{"a", 1}};
    dictionary.set("self", dictionary);
    EXPECT_EQ(dictionary, (Value{{"a", 1}, {"self", Value{{"a", 1}}}}));
    Value list = Value::list({1});
    list.add(list);
    EXPECT_EQ(list, Value::list({1, Value::list({1})}));
}

TEST(Value, RejectsChangesThatItsKindDoesNotSupport) {
    for (const Value& source : {Value(nullptr), Value(true), Value("a"), Value::raw("a")}) {
        Value value = source;
        EXPECT_THROW(value.set("a", 1), std::logic_error);
        EXPECT_THROW(value.add(1), std::logic_error);
        EXPECT_EQ(value, source);
    }
    EXPECT_THROW(Value().add(1), std::logic_error);
    EXPECT_THROW(Value::list().set("a", 1), std::logic_error);
}

/// A value of every kind, all different.
std::vector<Value> differentValues() {
    return {nullptr,
            true,
            false,
            "",
            "a",
            "aa",
            std::string("a\0b", 3),
            Value::raw("a"),
            Value::list(),
            Value::list({"a"}),
            Value::list({"a", "a"}),
            Value::list({Value::raw("a")}),
            Value{},
            Value{{"a", "a"}},
            Value{{"a", "b"}},
            Value{{"b", "a"}},
            Value{{"a", "a"}, {"b", "b"}},
            Value{{"a", Value{{"a", "a"}}}}};
}

TEST(Value, EqualsOnlyItsCopies) {
    const std::vector<Value> values = differentValues();
    const std::vector<Value> copies = values;
    for (std::size_t i = 0; i < values.size(); ++i) {
        for (std::size_t j = 0; j < copies.size(); ++j) {
            EXPECT_EQ(values[i] == copies[j], i == j) << i << " and " << j;
        }
    }
}

TEST(Value, IsCopiedAndMovedToAnyOther) {
    const std::vector<Value> values = differentValues();
    for (const Value& source : values) {
        for (const Value& former : values) {
            Value copied = former;
            copied = source;
            EXPECT_EQ(copied, source);
            Value moved = former;
            moved = std::move(copied);
            EXPECT_EQ(moved, source);
            EXPECT_EQ(copied, Value(nullptr));
        }
    }
}

TEST(Value, IsIndependentOfItsCopies) {
    Value value{{"list", Value::list({1})}};
    const Value copy = value;
    value.set("list", 2);
    EXPECT_EQ(copy, (Value{{"list", Value::list({1})}}));
}

TEST(Value, MayBecomeAPartOfItself) {
    Value value{{"a", Value{{"b", Value::list({1, 2})}}}};
    value = *value.find("a")->find("b");
    EXPECT_EQ(value, Value::list({1, 2}));
    value = value.at(1);
    EXPECT_EQ(value, Value(2));
    Value& same = value;
    value = same;
    EXPECT_EQ(value, Value(2));
    value = std::move(same);
    EXPECT_EQ(value, Value(2));
}

TEST(Value, IsNullWhenMovedFrom) {
    Value source{{"a", 1}};
    const Value target = std::move(source);
    EXPECT_EQ(source, Value(nullptr)); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(target, (Value{{"a", 1}}));
}

Value nestedLists(unsigned int levels) {
    Value value = "innermost";
    for (unsigned int i = 0; i < levels; ++i) {
        Value list = Value::list();
        list.add(std::move(value));
        value = std::move(list);
    }
    return value;
}

Value nestedDictionaries(unsigned int levels) {
    Value value = "innermost";
    for (unsigned int i = 0; i < levels; ++i) {
        Value dictionary;
        dictionary.set("a", std::move(value));
        value = std::move(dictionary);
    }
    return value;
}

TEST(ValueDepth, IsBounded) {
    Value list = nestedLists(Value::deepest);
    Value dictionary = nestedDictionaries(Value::deepest);
    const Value formerList = list;
    const Value formerDictionary = dictionary;
    EXPECT_THROW(list.add(nestedLists(Value::deepest)), std::length_error);
    EXPECT_THROW(list.add(nestedDictionaries(Value::deepest)), std::length_error);
    EXPECT_THROW(dictionary.set("a", formerDictionary), std::length_error);
    EXPECT_THROW(dictionary.set("b", formerList), std::length_error);
    EXPECT_EQ(list, formerList);
    EXPECT_EQ(dictionary, formerDictionary);
    EXPECT_THROW(Value::list({formerList}), std::length_error);
    EXPECT_THROW((Value{{"a", formerDictionary}}), std::length_error);
    EXPECT_THROW(Value(std::vector<Value>{formerList}), std::length_error);
    EXPECT_EQ(Value::deepest, 512u);
}

TEST(ValueDepth, CountsCurrentContents) {
    Value value;
    value.set("empty", nestedLists(Value::deepest - 1));
    EXPECT_THROW(Value::list({value}), std::length_error);
    value.set("empty", Value::list());
    EXPECT_NO_THROW(Value::list({value})); // the deep value has been replaced
    value.set("a", nestedLists(Value::deepest - 1));
    value.set("b", nestedLists(Value::deepest - 1));
    value.set("a", 1);
    EXPECT_THROW(Value::list({value}), std::length_error);
    value.set("b", 1);
    EXPECT_NO_THROW(Value::list({value}));
}

TEST(ValueDepth, FitsASmallStack) {
    // Without optimization, or with a sanitizer, each call uses several times as much.
    support::runWithStack((support::slow ? 4096 : 256) * 1024, [] {
        const Value value{{"list", nestedLists(Value::deepest - 1)},
                          {"dictionary", nestedDictionaries(Value::deepest - 1)}};
        const Value copy = value;
        EXPECT_TRUE(copy == value);
        EXPECT_NO_THROW(Context(value, {.positions = true}));
    });
}

TEST(ValueList, IsCreatedFromTheResultsOfAFunction) {
    const std::vector<std::string> names = {"a", "bc"};
    EXPECT_EQ(Value::list(names,
                          [](const std::string& name) {
                              return Value{{"name", name}, {"size", name.size()}};
                          }),
              Value::list({{{"name", "a"}, {"size", 1}}, {{"name", "bc"}, {"size", 2}}}));
    EXPECT_EQ(Value::list(names, &std::string::size), Value::list({1, 2}));
    const std::vector<bool> bits = {true, false};
    EXPECT_EQ(Value::list(bits, [](bool bit) { return !bit; }), Value::list({false, true}));
}

TEST(ValueList, IsCreatedFromAnyRange) {
    const int numbers[] = {1, 2, 3, 4};
    EXPECT_EQ(Value::list(numbers), Value::list({1, 2, 3, 4}));
    const std::vector<bool> bits = {true, false};
    EXPECT_EQ(Value::list(bits), Value::list({true, false}));
    EXPECT_EQ(Value::list(std::vector<bool>{true}), Value::list({true}));
    std::vector<std::string> texts = {"a", "b"};
    EXPECT_EQ(Value::list(texts), Value::list({"a", "b"}));
    EXPECT_EQ(texts[0], "a"); // not moved from
#if defined(__cpp_lib_ranges)
    EXPECT_EQ(Value::list(numbers | std::views::filter([](int n) { return n % 2 == 0; })),
              Value::list({2, 4}));
    EXPECT_EQ(Value::list(std::views::iota(1, 4)), Value::list({1, 2, 3}));
#endif
}

template <typename... Arguments>
concept listable = requires(Arguments&&... arguments) {
    Value::list(arguments...);
};
static_assert(listable<std::vector<int>&>);
static_assert(!listable<const char (&)[4]>, "a text is no list of its characters");
static_assert(!listable<std::string&>);
static_assert(!listable<std::wstring&>);
static_assert(!listable<std::vector<void*>&>);
static_assert(!listable<int>);

} // namespace
} // namespace kel::Stencilor
