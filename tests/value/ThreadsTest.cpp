#include "../support/Test.h"

#include <libStencilor/Value.h>

namespace kel::Stencilor {
namespace {

TEST(ValueThreads, ReadOneValueAndOneContextAtOnce) {
    const Value value{{"title", std::string(1000, 't')},
                      {"user", {{"name", "x"}, {"tags", Value::list({"a", "b"})}}},
                      {"ok", {{"$boolean", true}, {"n", 1}}}};
    const Context context(value, {.positions = true});
    const String text = "{{ user.name }}{% for t in user.tags %}{{ t.index }}{{ t.value }}"
                        "{% endfor %}{% if ok %}{{ n }}{% endif %}{{ title }}";
    const String expected(std::string("x1a2b1") + std::string(1000, 't'));
    std::array<bool, 8> succeeded = {};
    std::vector<std::thread> threads;
    for (bool& success : succeeded) {
        threads.emplace_back([&] {
            success = true;
            for (int i = 0; i < 50; ++i) {
                Value copy = value;
                success = success && copy == value && buildOutput(text, context) == expected;
                copy.set("title", "changed");
                success = success && !(copy == value) && value.find("ok")->size() == 2;
                const Context own(value, {.positions = true});
                success = success && buildOutput(text, own) == expected;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const bool success : succeeded) {
        EXPECT_TRUE(success);
    }
}

} // namespace
} // namespace kel::Stencilor
