#include "../support/Context.h"
#include "../support/Deletions.h"
#include "../support/Test.h"

#include <libStencilor/Stencilor.h>

namespace kel::Stencilor {
namespace {

using support::Deletions;
using support::Elements;
using support::Entries;
using support::Logged;
using support::textOf;
using support::truthOf;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

static_assert(std::is_empty_v<ContextFactory> && !std::is_polymorphic_v<ContextFactory>);

enum Unscoped { One };

// What converts to a boolean. A pointer does not, because it would always be true.
template <typename T>
concept buildsBoolean = requires(T&& source) {
    ContextFactory::buildBoolean(source);
};
template <typename T>
concept buildsBooleanWithChildren = requires(T&& source, const Entries& children) {
    ContextFactory::buildBoolean(source, children);
};
template <typename... Sources>
constexpr bool areBooleans = ((std::is_constructible_v<ContextBoolean, Sources> &&
                               buildsBoolean<Sources> && buildsBooleanWithChildren<Sources>)&&...);
template <typename... Sources>
constexpr bool areNoBooleans = ((!std::is_constructible_v<ContextBoolean, Sources> &&
                                 !buildsBoolean<Sources> &&
                                 !buildsBooleanWithChildren<Sources>)&&...);
static_assert(areBooleans<bool, bool&, int, const int&, Unscoped>);
static_assert(areNoBooleans<const char (&)[6], const char*, char*, const void*, ContextString*,
                            void (*)(), std::nullptr_t, std::string, String>);

TEST(ContextFactory, BuildsBooleansFromNumbers) {
    const std::unique_ptr<ContextBoolean> zero(ContextFactory::buildBoolean(0));
    EXPECT_FALSE(truthOf(*zero));
    const std::unique_ptr<ContextBoolean> one(ContextFactory::buildBoolean(1, {}));
    EXPECT_TRUE(truthOf(*one));
    ContextBoolean made(0);
    EXPECT_FALSE(truthOf(made));
}

TEST(ContextFactory, BuildsAStringWithACopyOfTheText) {
    String text("text");
    const std::unique_ptr<ContextString> value(ContextFactory::buildString(text));
    text += String(" changed");
    EXPECT_EQ(textOf(*value), "text");
}

TEST(ContextFactory, BuildsBothBooleansWithAndWithoutChildren) {
    for (const bool truth : {true, false}) {
        const std::unique_ptr<ContextBoolean> alone(ContextFactory::buildBoolean(truth));
        EXPECT_EQ(truthOf(*alone), truth);
        const Entries children = {{"a", new ContextBase}, {"b", nullptr}};
        const std::unique_ptr<ContextBoolean> value(ContextFactory::buildBoolean(truth, children));
        EXPECT_EQ(truthOf(*value), truth);
        for (const auto& [key, child] : children) {
            EXPECT_TRUE(value->containsKey(key));
            EXPECT_EQ(value->find(key), child);
        }
    }
}

TEST(ContextFactory, BuildsEmptyValues) {
    const std::unique_ptr<ContextDictionary> dictionary(ContextFactory::buildDictionary());
    EXPECT_EQ(dictionary->size(), 0u);
    const std::unique_ptr<ContextDictionary> fromMap(ContextFactory::buildDictionary(Entries()));
    EXPECT_EQ(fromMap->size(), 0u);
    const std::unique_ptr<ContextIterable> list(ContextFactory::buildIterable());
    EXPECT_EQ(list->size(), 0u);
    const std::unique_ptr<ContextIterable> fromVector(ContextFactory::buildIterable(Elements()));
    EXPECT_EQ(fromVector->size(), 0u);
    const std::unique_ptr<ContextBoolean> truth(ContextFactory::buildBoolean(true, Entries()));
    EXPECT_TRUE(truthOf(*truth));
}

TEST(ContextFactory, PutsThePointersOfAMapIntoADictionary) {
    const Entries children = {{"a", new ContextBase}, {"", new ContextBase}, {"null", nullptr}};
    const Entries before = children;
    const std::unique_ptr<ContextDictionary> value(ContextFactory::buildDictionary(children));
    EXPECT_EQ(children, before);
    EXPECT_EQ(value->size(), children.size());
    for (const auto& [key, child] : children) {
        EXPECT_TRUE(value->containsKey(key));
        EXPECT_EQ(value->find(key), child);
    }
}

TEST(ContextFactory, PutsThePointersOfAVectorIntoAList) {
    const Elements elements = {new ContextBase, nullptr, new ContextBase, nullptr};
    const Elements before = elements;
    const std::unique_ptr<ContextIterable> value(ContextFactory::buildIterable(elements));
    EXPECT_EQ(elements, before);
    ASSERT_EQ(value->size(), elements.size());
    for (unsigned int index = 0; index < elements.size(); ++index) {
        EXPECT_EQ((*value)[index], elements[index]);
    }
}

TEST(ContextFactory, LeavesDeletionToTheValues) {
    Deletions deletions;
    const auto logged = [&deletions](const char* name) {
        return new Logged<ContextBase>(deletions, name);
    };
    std::vector<std::unique_ptr<ContextBase>> values;
    values.emplace_back(ContextFactory::buildBoolean(true, {{"k", logged("of boolean")}}));
    values.emplace_back(ContextFactory::buildDictionary({{"k", logged("of dictionary")}}));
    values.emplace_back(ContextFactory::buildIterable(Elements{logged("of list")}));
    EXPECT_THAT(deletions, IsEmpty());
    values.clear();
    EXPECT_THAT(deletions, UnorderedElementsAre("of boolean", "of dictionary", "of list"));
}

TEST(ContextFactory, ReturnsItselfWhenItIsAssigned) {
    ContextFactory factory;
    const ContextFactory other;
    EXPECT_EQ(&(factory = other), &factory);
    EXPECT_EQ(&(factory = ContextFactory()), &factory);
    ContextFactory copy(other);
    const ContextFactory moved(std::move(copy));
    EXPECT_EQ(&(factory = moved), &factory);
}

} // namespace
} // namespace kel::Stencilor
