#include <libStencilor/Value.h>

#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

// Conversions that must not compile. A failing case does not compile.

namespace kel::Stencilor {
namespace {

enum Unscoped { One };
enum class Scoped { One };
struct Plain {
    int member;
};

template <typename... Sources>
constexpr bool areRefused = (!std::is_constructible_v<Value, Sources> && ...);

// Pointers would be strings by mistake, or booleans that are always true.
static_assert(areRefused<int*, void*, const void*, bool*, Plain*, Value*, String*, std::string*,
                         void (*)(), int Plain::*, std::unique_ptr<int>, std::shared_ptr<Value>>);
// Wide characters and strings would be numbers or lists of numbers.
static_assert(areRefused<wchar_t, char8_t, char16_t, char32_t>);
static_assert(areRefused<const wchar_t*, const wchar_t (&)[2], std::wstring, std::wstring_view,
                         const char8_t*, const char8_t (&)[2], std::u8string, std::u16string,
                         std::u32string, std::vector<wchar_t>>);
static_assert(areRefused<Unscoped, Scoped, std::byte, std::filesystem::path>);
// Types without a conversion, and containers of them.
static_assert(areRefused<Plain, std::vector<Plain>, std::optional<Plain>, std::vector<int*>,
                         std::map<std::string, Scoped>, std::map<int, int>,
                         std::map<std::wstring, int>, std::pair<int, int>, std::tuple<int>,
                         std::function<int()>, std::vector<bool>::reference>);
static_assert(areRefused<ContextString, ContextBase&, ContextBase*, Context>);

template <typename... Keys>
constexpr bool areNoKeys = (!std::is_constructible_v<Value::Member, Keys, int> && ...);
static_assert(areNoKeys<int, bool, char, std::nullptr_t, Value, std::wstring, Plain>);

// Braces without pairs. These are concepts, because only dependent expressions may fail to compile.
template <typename V>
concept holdsBareItems = requires {
    V{{"list", {1, 2}}};
}
|| requires {
    V{"a", "b"};
};
template <typename V>
concept listsBarePairs = requires {
    V::list({{"a", 1}});
};
static_assert(!holdsBareItems<Value> && !listsBarePairs<Value>);

static_assert(!std::is_copy_constructible_v<Context> && !std::is_copy_assignable_v<Context>);
static_assert(std::is_nothrow_move_constructible_v<Context> &&
              std::is_nothrow_move_assignable_v<Context>);
static_assert(std::is_convertible_v<Context, const ContextBase&>);
static_assert(!std::is_convertible_v<Value, Context>, "what costs time is written out");

} // namespace
} // namespace kel::Stencilor
