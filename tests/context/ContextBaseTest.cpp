#include "../support/Context.h"
#include "../support/Deletions.h"
#include "../support/Test.h"

#include <libStencilor/Stencilor.h>

namespace kel::Stencilor {
namespace {

using support::Deletions;
using support::Logged;
using testing::ElementsAre;
using testing::IsEmpty;

static_assert(std::has_virtual_destructor_v<ContextBase>);

TEST(ContextBase, IsInitiallyEmpty) {
    const ContextBase value;
    EXPECT_EQ(value.find("key"), nullptr);
    EXPECT_FALSE(value.containsKey("key"));
    EXPECT_EQ(value.find(""), nullptr);
    EXPECT_FALSE(value.containsKey(""));
}

TEST(ContextBase, FindsInsertedChildrenWithoutInserting) {
    ContextDictionary value;
    auto* const child = new ContextBase;
    EXPECT_EQ(value.insert("key", child), child);
    const ContextBase& constant = value;
    EXPECT_EQ(constant.find("key"), child);
    EXPECT_TRUE(constant.containsKey("key"));
    EXPECT_EQ(constant.find("other"), nullptr);
    EXPECT_FALSE(constant.containsKey("other"));
    EXPECT_EQ(value.size(), 1u);
}

TEST(ContextBase, OperatorRefersToTheEntryWhichIsInitiallyNull) {
    Deletions deletions;
    {
        ContextDictionary value;
        auto* const child = new Logged<ContextBase>(deletions, "child");
        ContextBase*& entry = value["key"];
        EXPECT_EQ(entry, nullptr);
        EXPECT_TRUE(value.containsKey("key"));
        entry = child;
        EXPECT_EQ(value.find("key"), child);
        EXPECT_EQ(&value["key"], &entry);
        EXPECT_EQ(value.size(), 1u);
    }
    EXPECT_THAT(deletions, ElementsAre("child"));
}

TEST(ContextBase, InsertDropsThePreviousPointerWithoutDeletingIt) {
    Deletions deletions;
    Logged<ContextBase> former(deletions, "former");
    {
        ContextDictionary value;
        value.insert("key", &former);
        auto* const later = new Logged<ContextBase>(deletions, "later");
        EXPECT_EQ(value.insert("key", later), later);
        EXPECT_EQ(value.find("key"), later);
        EXPECT_EQ(value.size(), 1u);
        value.insert("null", &former);
        EXPECT_EQ(value.insert("null", nullptr), nullptr);
        EXPECT_TRUE(value.containsKey("null"));
        EXPECT_EQ(value.find("null"), nullptr);
        EXPECT_THAT(deletions, IsEmpty());
    }
    EXPECT_THAT(deletions, ElementsAre("later"));
}

TEST(ContextBase, KeepsCopiesOfItsKeys) {
    ContextBase value;
    String key("key");
    value.insert(key, nullptr);
    key += String("s");
    EXPECT_TRUE(value.containsKey("key"));
    EXPECT_FALSE(value.containsKey(key));
}

TEST(ContextBase, DistinguishesKeysByEveryByte) {
    ContextDictionary value;
    const String keys[] = {"key", "Key", "key ", " key", "ke", "", String("key\0", 4), "k\u00E9y"};
    for (const String& key : keys) {
        EXPECT_FALSE(value.containsKey(key)) << key;
        value.insert(key, new ContextString(key));
    }
    EXPECT_EQ(value.size(), std::size(keys));
    for (const String& key : keys) {
        auto* const found = dynamic_cast<ContextString*>(value.find(key));
        ASSERT_NE(found, nullptr) << key;
        EXPECT_EQ(support::textOf(*found), key.str().c_str());
    }
}

TEST(ContextBase, DeletesItsChildrenInAscendingOrderOfTheirKeys) {
    Deletions deletions;
    {
        ContextBase value;
        for (const char* const key : {"b", "\xC3\xA9", "a", "B", "aa", "", "ab", "_"}) {
            value.insert(key, new Logged<ContextBase>(deletions, key));
        }
        value.insert("an entry that holds null", nullptr);
        value["another one"];
    }
    EXPECT_THAT(deletions, ElementsAre("", "B", "_", "a", "aa", "ab", "b", "\xC3\xA9"));
}

TEST(ContextBase, KeepsEachOfManyEntriesInItsPlace) {
    for (const int count : {1, 2, 3, 4, 5, 8, 9, 10, 17, 300, 1000}) {
        SCOPED_TRACE(count);
        const auto keyOf = [](int number) { return String(std::to_string(number * 7919 % 10007)); };
        ContextDictionary value;
        std::vector<ContextBase**> entries;
        for (int number = 0; number < count; ++number) {
            ASSERT_EQ(value.find(keyOf(number)), nullptr);
            entries.push_back(&value[keyOf(number)]);
            *entries.back() = new ContextBase;
        }
        EXPECT_EQ(value.size(), entries.size());
        ContextDictionary copy(value);
        for (int number = 0; number < count; ++number) {
            ContextBase** const entry = entries[static_cast<std::size_t>(number)];
            ASSERT_EQ(&value[keyOf(number)], entry);
            ASSERT_EQ(value.find(keyOf(number)), *entry);
            ASSERT_EQ(copy.find(keyOf(number)), *entry);
            ASSERT_FALSE(value.containsKey(keyOf(number).str() + "."));
        }
        copy = ContextDictionary(); // the children are those of the value
    }
}

TEST(ContextBase, DeletesManyChildrenInAscendingOrderOfTheirKeys) {
    Deletions deletions;
    std::vector<std::string> keys;
    {
        ContextBase value;
        for (int number = 0; number < 26; ++number) {
            keys.emplace_back(1, static_cast<char>('a' + number * 7 % 26));
            value.insert(keys.back(), new Logged<ContextBase>(deletions, keys.back().c_str()));
        }
    }
    std::sort(keys.begin(), keys.end());
    EXPECT_THAT(deletions, testing::ElementsAreArray(keys));
}

TEST(ContextBase, DeletesAWholeTreeThroughItsRoot) {
    Deletions deletions;
    ContextBase* const root = new Logged<ContextDictionary>(deletions, "root");
    auto* const list = new Logged<ContextIterable>(deletions, "list");
    auto* const flag = new Logged<ContextBoolean>(deletions, "flag", true);
    root->insert("list", list);
    root->insert("flag", flag);
    flag->insert("inner", new Logged<ContextString>(deletions, "inner", "text"));
    list->add(new Logged<ContextString>(deletions, "element", "text"));
    delete root;
    // A destructor records its name before its contents are destroyed.
    EXPECT_THAT(deletions, ElementsAre("root", "flag", "inner", "list", "element"));
}

} // namespace
} // namespace kel::Stencilor
