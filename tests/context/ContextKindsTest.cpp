#include "../support/Context.h"
#include "../support/Deletions.h"
#include "../support/Test.h"

#include <libStencilor/Stencilor.h>

namespace kel::Stencilor {
namespace {

using support::Deletions;
using support::Logged;
using support::textOf;
using support::truthOf;
using testing::ElementsAre;
using testing::IsEmpty;

static_assert(
    std::is_same_v<decltype(std::declval<const ContextDictionary&>().size()), std::size_t>);
static_assert(std::is_same_v<decltype(std::declval<const ContextIterable&>().size()), std::size_t>);

// Children behave the same in all kinds of values that are copied, moved and assigned. Each value
// has this child, which therefore has several parents until the test removes it from them.
template <typename Value>
class SharedChild {
  public:
    void putInto(Value& value) { value.insert("child", &child_); }
    bool isIn(const Value& value) const {
        return value.containsKey("child") && value.find("child") == &child_;
    }
    void takeFrom(Value& value) { value.insert("child", nullptr); }

  private:
    ContextBase child_;
};

template <typename Value>
Value make() {
    return Value();
}
template <>
ContextString make() {
    return ContextString("a text that is longer than a few bytes");
}
template <>
ContextRawString make() {
    return ContextRawString("a text that is longer than a few bytes");
}
template <>
ContextBoolean make() {
    return ContextBoolean(true);
}
template <typename Value>
class ContextKind : public testing::Test {};

using Kinds = testing::Types<ContextBase, ContextString, ContextRawString, ContextBoolean,
                             ContextDictionary, ContextIterable>;
TYPED_TEST_SUITE(ContextKind, Kinds);

TYPED_TEST(ContextKind, SharesItsChildrenWithCopies) {
    SharedChild<TypeParam> child;
    TypeParam source = make<TypeParam>();
    child.putInto(source);
    TypeParam copy(source);
    EXPECT_TRUE(child.isIn(copy));
    EXPECT_TRUE(child.isIn(source));
    copy.insert("more", nullptr);
    EXPECT_FALSE(source.containsKey("more"));
    child.takeFrom(copy);
    EXPECT_TRUE(child.isIn(source));
    child.takeFrom(source);
}

TYPED_TEST(ContextKind, KeepsItsChildrenWhenItIsMovedFrom) {
    SharedChild<TypeParam> child;
    TypeParam source = make<TypeParam>();
    child.putInto(source);
    TypeParam constructed(std::move(source));
    EXPECT_TRUE(child.isIn(constructed));
    EXPECT_TRUE(child.isIn(source));

    TypeParam assigned = make<TypeParam>();
    EXPECT_EQ(&(assigned = std::move(source)), &assigned);
    EXPECT_TRUE(child.isIn(assigned));
    EXPECT_TRUE(child.isIn(source));
    child.takeFrom(constructed);
    child.takeFrom(assigned);
    child.takeFrom(source);
}

TYPED_TEST(ContextKind, DropsItsChildrenWithoutDeletingThemWhenItIsAssignedTo) {
    Deletions deletions;
    Logged<ContextBase> former(deletions, "former");
    {
        SharedChild<TypeParam> child;
        TypeParam source = make<TypeParam>();
        child.putInto(source);
        TypeParam copied = make<TypeParam>();
        copied.insert("former", &former);
        EXPECT_EQ(&(copied = source), &copied);
        TypeParam moved = make<TypeParam>();
        moved.insert("former", &former);
        moved = std::move(source);
        for (TypeParam* const value : {&copied, &moved, &source}) {
            EXPECT_FALSE(value->containsKey("former"));
            EXPECT_TRUE(child.isIn(*value));
            child.takeFrom(*value);
        }
    }
    EXPECT_THAT(deletions, IsEmpty());
}

TYPED_TEST(ContextKind, StaysTheSameWhenItIsAssignedToItself) {
    TypeParam value = make<TypeParam>();
    auto* const child = new ContextBase;
    value.insert("child", child);
    TypeParam& same = value;
    value = same;
    EXPECT_EQ(value.find("child"), child);
    value = std::move(same);
    EXPECT_EQ(value.find("child"), child);
}

template <typename Value>
class ContextText : public testing::Test {};

using Texts = testing::Types<ContextString, ContextRawString>;
TYPED_TEST_SUITE(ContextText, Texts);

TYPED_TEST(ContextText, KeepsACopyOfItsText) {
    String text("text");
    TypeParam value(text);
    text += String(" changed");
    EXPECT_EQ(textOf(value), "text");
    EXPECT_FALSE(value.containsKey("text"));
}

TYPED_TEST(ContextText, CopiesAndMovesItsText) {
    TypeParam source("a text that is longer than a few bytes");
    TypeParam& same = source;
    source = same;
    source = std::move(same);
    TypeParam copy(source);
    EXPECT_EQ(textOf(copy), "a text that is longer than a few bytes");
    EXPECT_EQ(textOf(source), "a text that is longer than a few bytes");
    TypeParam assigned("other");
    assigned = source;
    EXPECT_EQ(textOf(assigned), "a text that is longer than a few bytes");
    EXPECT_EQ(textOf(source), "a text that is longer than a few bytes");

    TypeParam moved(std::move(source));
    EXPECT_EQ(textOf(moved), "a text that is longer than a few bytes");
    EXPECT_EQ(textOf(source), "");
    assigned = std::move(copy);
    EXPECT_EQ(textOf(assigned), "a text that is longer than a few bytes");
    EXPECT_EQ(textOf(copy), "");
}

TEST(ContextRawString, IsRenderedAsAString) {
    support::Root root({{"raw", new ContextRawString("<b>")}});
    EXPECT_EQ(support::render("{{ raw }}", root).output, "<b>");
    static_assert(std::is_base_of_v<ContextString, ContextRawString>);
}

TEST(ContextBoolean, KeepsItsValueThroughEveryCopyAndMove) {
    for (const bool truth : {true, false}) {
        ContextBoolean source(truth);
        ContextBoolean copy(source);
        ContextBoolean moved(std::move(source));
        ContextBoolean assigned(!truth);
        assigned = copy;
        ContextBoolean moveAssigned(!truth);
        moveAssigned = std::move(copy);
        for (ContextBoolean* const value : {&source, &copy, &moved, &assigned, &moveAssigned}) {
            EXPECT_EQ(truthOf(*value), truth);
        }
    }
}

TEST(ContextDictionary, CountsItsEntriesIncludingNullOnes) {
    ContextDictionary value;
    EXPECT_EQ(value.size(), 0u);
    value.insert("one", new ContextBase);
    value.insert("two", nullptr);
    value["three"];
    value["three"];
    EXPECT_EQ(value.size(), 3u);
}

TEST(ContextIterable, HoldsItsElementsInTheOrderTheyWereAdded) {
    ContextIterable value;
    value.insert("child", new ContextBase); // no element
    EXPECT_EQ(value.size(), 0u);
    auto* const first = new ContextBase;
    auto* const last = new ContextBase;
    value.add(first);
    value.add(nullptr);
    value.add(last);
    ASSERT_EQ(value.size(), 3u);
    EXPECT_EQ(value[0], first);
    EXPECT_EQ(value[1], nullptr);
    EXPECT_EQ(value[2], last);
}

TEST(ContextIterable, DeletesItsElementsInOrderAndThenItsNamedChildren) {
    Deletions deletions;
    {
        ContextIterable value;
        value.insert("b", new Logged<ContextBase>(deletions, "child b"));
        value.insert("a", new Logged<ContextBase>(deletions, "child a"));
        value.add(new Logged<ContextBase>(deletions, "element 0"));
        value.add(nullptr);
        value.add(new Logged<ContextString>(deletions, "element 2", "text"));
        value.add(new Logged<ContextBase>(deletions, "element 3"));
    }
    EXPECT_THAT(deletions,
                ElementsAre("element 0", "element 2", "element 3", "child a", "child b"));
}

// The elements are not on the heap, so the test would crash if a list deleted one.
TEST(ContextIterable, SharesItsElementsWithCopiesAndIsCopiedWhenMoved) {
    Deletions deletions;
    Logged<ContextBase> element(deletions, "element");
    Logged<ContextBase> former(deletions, "former");
    auto& source = *new ContextIterable;
    source.add(&element);
    source.add(nullptr);
    const ContextIterable& same = source;
    source = same;
    auto& copy = *new ContextIterable(source);
    auto& moved = *new ContextIterable(std::move(source));
    auto& assigned = *new ContextIterable;
    assigned.add(&former);
    assigned.add(&former);
    assigned.add(&former);
    assigned = source;
    auto& moveAssigned = *new ContextIterable;
    moveAssigned.add(&former);
    moveAssigned = std::move(source);
    copy.add(nullptr);
    EXPECT_EQ(copy.size(), 3u);
    for (ContextIterable* const value : {&source, &moved, &assigned, &moveAssigned}) {
        ASSERT_EQ(value->size(), 2u);
        EXPECT_EQ((*value)[0], &element);
        EXPECT_EQ((*value)[1], nullptr);
    }
    // Assigning an empty list removes the elements without deleting them.
    for (ContextIterable* const value : {&source, &copy, &moved, &assigned, &moveAssigned}) {
        *value = ContextIterable();
        EXPECT_EQ(value->size(), 0u);
        delete value;
    }
    EXPECT_THAT(deletions, IsEmpty());
}

} // namespace
} // namespace kel::Stencilor
