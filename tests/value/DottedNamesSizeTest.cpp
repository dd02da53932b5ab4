#include "../support/Test.h"

#include <libStencilor/context/build_context.h>

namespace kel::Stencilor::internal {
namespace {

constexpr std::uint64_t perEntry = 192; // about a map node and a value

bool isBuilt(const Value& value, std::uint64_t limit) {
    try {
        buildContext(value, {}, limit);
        return true;
    } catch (const std::length_error&) {
        return false;
    }
}

TEST(DottedNamesSize, IncludesNamesAndWhatTheyShare) {
    const Value text = std::string(100, 't');
    const struct {
        const char* name;
        Value value;
        std::uint64_t size;
    } cases[] = {
        {"no nested dictionary", {{"a", text}, {"b", Value::list({text})}}, 0},
        {"an empty nested dictionary", {{"a", Value{}}}, 0},
        {"an empty text", {{"a", {{"b", ""}}}}, perEntry + 3},
        {"null", {{"a", {{"b", nullptr}}}}, perEntry + 3},
        {"a boolean", {{"a", {{"b", true}}}}, perEntry + 3},
        {"a longer text", {{"a", {{"b", text}}}}, perEntry + 3 + 100},
        {"a raw text", {{"a", {{"b", Value::raw("1234567")}}}}, perEntry + 3 + 7},
        {"longer keys", {{"a234", {{"b2", ""}}}}, perEntry + 7},
        {"a list", {{"a", {{"b", std::vector<int>(10)}}}}, perEntry + 3 + 10 * sizeof(void*)},
        {"a boolean with children",
         {{"a", {{"b", {{"$boolean", true}, {"c", ""}}}}}},
         // b.c; a.b with a child, and a.b.c
         (perEntry + 3) + (perEntry + 3 + perEntry + 1) + (perEntry + 5)},
        {"three levels", {{"a", {{"b", {{"c", ""}}}}}}, (perEntry + 3) * 2 + (perEntry + 5)},
        {"two elements",
         {{"l", Value::list({{{"a", {{"b", ""}}}}, {{"a", {{"b", ""}}}}})}},
         (perEntry + 3) * 2},
    };
    for (const auto& [name, value, size] : cases) {
        SCOPED_TRACE(name);
        EXPECT_TRUE(isBuilt(value, size));
        if (size > 0) {
            EXPECT_FALSE(isBuilt(value, size - 1));
        }
    }
    EXPECT_EQ(dotted_names_limit, 512u * 1024 * 1024);
}

} // namespace
} // namespace kel::Stencilor::internal
