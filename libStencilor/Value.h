#ifndef LIBSTENCILOR_VALUE_H
#define LIBSTENCILOR_VALUE_H

/// @file
/// Plain data for templates, and the context that it becomes.
///
///     #include <libStencilor/Value.h>
///     #include <iostream>
///     #include <string>
///     #include <vector>
///
///     using namespace kel::Stencilor;
///
///     struct Tea {
///         std::string name;
///         double price;
///     };
///     STENCILOR_MEMBERS(Tea, name, price);
///
///     int main() {
///         const std::vector<Tea> teas = {{"Assam", 4.5}, {"Sencha", 6}};
///         const Value page{{"title", "Teas"}, {"open", true}, {"teas", teas}};
///         std::cout << buildOutput("{{ title }}:{% for tea in teas %}"
///                                  " {{ tea.name }} {{ tea.price }}{% endfor %}\n",
///                                  Context(page)); // Teas: Assam 4.5 Sencha 6
///     }
///
/// A `Value` is data and nothing else: build it, copy it, change it. A `Context` is what templates
/// are rendered with; build it once to render the same values many times.
///
/// What becomes a value:
///
/// - text: `String`, `std::string`, `std::string_view`, character arrays and pointers (a null
///   pointer is an empty text, as in `String`); a `char` is a text of one character,
/// - `true` and `false`, only from `bool`,
/// - integers in decimal, `signed char` and `unsigned char` among them,
/// - floating-point numbers in the fewest digits that read back as the same number, and with an
///   exponent below 1e-6 and from 1e21 on: `0.1`, `100`, `1e+21`, `1.5e-7`; `-0` is `0`,
/// - `nullptr`, `std::nullopt` and an empty `std::optional` become null, and an optional its value,
/// - maps with texts as keys become dictionaries, other ranges lists,
/// - types with `STENCILOR_MEMBERS`, or with a function `Value toValue(const T&)` in their
///   namespace.
///
/// Everything else does not compile: other pointers, wide characters and texts of them,
/// enumerations, `std::filesystem::path`.

#include <libKel/String.h>
#include <libStencilor/Export.h>
#include <libStencilor/Stencilor.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <ranges>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace kel::Stencilor {

class Value;

/// @cond
namespace internal {

template <typename T, typename... Others>
concept one_of = (std::same_as<T, Others> || ...);

template <typename T>
concept text_like = std::same_as<T, String> ||
    (std::convertible_to<const T&, std::string_view> && !std::same_as<T, std::nullptr_t>);

template <typename T>
concept integer = std::integral<T> && sizeof(T) <= sizeof(std::uint64_t) &&
                  !one_of<T, bool, char, wchar_t, char8_t, char16_t, char32_t>;

template <typename T>
concept described = requires(const T& source) {
    { toValue(source) } -> std::same_as<Value>;
};

// Not the ranges whose elements are of their own type, such as a path: there is no end to them.
template <typename T>
concept range =
    std::ranges::input_range<const T> && !std::same_as<std::ranges::range_value_t<const T>, T>;

template <typename T>
concept map = range<T> && requires {
    typename T::key_type;
    typename T::mapped_type;
};

template <typename T>
inline constexpr bool is_optional = false;
template <typename T>
inline constexpr bool is_optional<std::optional<T>> = true;

template <typename T>
consteval bool isConvertible() {
    if constexpr (described<T> || text_like<T> || integer<T> || std::floating_point<T> ||
                  one_of<T, Value, bool, char, std::nullptr_t, std::nullopt_t>) {
        return true;
    } else if constexpr (is_optional<T>) {
        return isConvertible<typename T::value_type>();
    } else if constexpr (map<T>) {
        return text_like<typename T::key_type> && isConvertible<typename T::mapped_type>();
    } else if constexpr (range<T>) {
        return isConvertible<std::ranges::range_value_t<const T>>();
    } else {
        return false;
    }
}

template <typename T>
concept value_source = !std::same_as<T, Value> && isConvertible<T>();

// A text is a range, but not a list.
template <typename T>
concept list_source = std::ranges::input_range<T> && !text_like<std::remove_cvref_t<T>>;

STENCILOR_EXPORT String makeString(std::string_view bytes);

template <text_like T>
String makeString(const T& text) {
    if constexpr (std::same_as<T, String> || std::is_pointer_v<T>) {
        return String(text);
    } else {
        return makeString(std::string_view(text));
    }
}

struct value_access;

} // namespace internal
/// @endcond

/// Data for a template: null, a boolean, a text, a list, or a dictionary ordered by its keys.
///
/// Braces of pairs make a dictionary, and `Value{}` is an empty one; `Value{x}` is `x` as a value.
/// Lists are made by `list` and of ranges.
///
/// Copying: a copy is a value of its own, whole. Moving takes constant time and leaves null.
/// Depth: lists and dictionaries nest at most `deepest` levels; what would make a deeper one throws
///   `std::length_error` and changes nothing.
/// Threads: may be read by many threads while none changes it.
/// Errors: `std::length_error` for a text of more than 4 GiB - 1 byte, `std::invalid_argument` for
/// a
///   floating-point number that is not finite, `std::logic_error` where a value is changed in a way
///   that its kind does not have, `std::bad_alloc`. None of them changes the value.
class Value {
  public:
    class Member;

    /// What a value can be.
    enum class Kind {
        Null,      ///< nothing; a template does not find it
        Boolean,   ///< true or false
        Text,      ///< a text, which a render may escape; numbers are texts, too
        RawText,   ///< a text that is never escaped
        List,      ///< values in their order
        Dictionary ///< values by their keys
    };

    /// How many lists and dictionaries may nest; the outermost one counts.
    static constexpr unsigned int deepest = 512;

    /// An empty dictionary.
    STENCILOR_EXPORT Value();

    /// A dictionary. Where a key is given twice, the last one wins.
    /// @param members keys with their values; they are moved from
    STENCILOR_EXPORT Value(std::initializer_list<Member> members);

    /// What `source` is as a value, by the rules at the top of this header.
    /// @param source what is converted; it is copied
    template <internal::value_source T>
    Value(const T& source) : Value(convert(source)) {}

    /// Copies a value with all that it holds.
    /// @param other the value that is copied
    STENCILOR_EXPORT Value(const Value& other);

    /// Takes a value.
    /// @param other is null afterwards
    STENCILOR_EXPORT Value(Value&& other) noexcept;

    /// Copies a value with all that it holds.
    /// @param other the value that is copied; it may be a part of this one
    /// @return this value
    STENCILOR_EXPORT Value& operator=(const Value& other);

    /// Takes a value.
    /// @param other is null afterwards
    /// @return this value
    STENCILOR_EXPORT Value& operator=(Value&& other) noexcept;

    /// Destroys the value with all that it holds.
    STENCILOR_EXPORT ~Value();

    /// Makes a text that no render escapes. Use it for text that is known to be safe where it is
    /// inserted, such as HTML that the host made itself.
    /// @param text the text
    /// @return the value
    STENCILOR_EXPORT static Value raw(String text);

    /// Makes a list.
    /// @param items the items in their order
    /// @return the value
    STENCILOR_EXPORT static Value list(std::initializer_list<Value> items = {});

    /// Makes a list of a range.
    /// @param range the items in their order; none of them is moved from
    /// @return the value
    template <internal::list_source Range>
    requires std::constructible_from < Value, const std::ranges::range_value_t<Range>
    & > static Value list(Range&& range);

    /// Makes a list of what a function returns for each item of a range:
    ///
    ///     Value::list(names, [](const std::string& name) { return Value{{"name", name}}; })
    ///
    /// @param range the items in their order
    /// @param function called with each item; a pointer to a member will do
    /// @return the value
    template <internal::list_source Range, typename Function>
    requires std::constructible_from<
        Value, std::invoke_result_t<Function&, std::ranges::range_reference_t<Range>>>
    static Value list(Range&& range, Function function);

    /// Says what the value is.
    /// @return its kind
    Kind kind() const noexcept { return static_cast<Kind>(data_.index()); }

    /// Reads a boolean.
    /// @return true for the boolean true; false for everything else
    STENCILOR_EXPORT bool isTrue() const noexcept;

    /// Reads a text or raw text.
    /// @return the text, valid until the value is changed; empty for every other kind
    STENCILOR_EXPORT const String& text() const noexcept;

    /// Counts what a list or dictionary holds.
    /// @return the number of items or members; 0 for every other kind
    STENCILOR_EXPORT std::size_t size() const noexcept;

    /// Reads an item of a list.
    /// @param index counted from 0; one at or past the size of a list, and any index of what is no
    ///   list, throws `std::out_of_range`
    /// @return the item, valid until the value is changed
    STENCILOR_EXPORT const Value& at(std::size_t index) const;

    /// Looks up a member of a dictionary.
    /// @param key the key of the member
    /// @return the member, valid until the value is changed; null where there is none
    STENCILOR_EXPORT const Value* find(const String& key) const noexcept;

    /// Lists the keys of a dictionary.
    /// @return the keys in ascending order; none for every other kind
    STENCILOR_EXPORT std::vector<String> keys() const;

    /// Sets a member of a dictionary, in place of one with the same key. For a value that is no
    /// dictionary it throws `std::logic_error`.
    /// @param key the key of the member
    /// @param value the member
    STENCILOR_EXPORT void set(String key, Value value);

    /// Appends an item to a list. For a value that is no list it throws `std::logic_error`.
    /// @param item the item
    STENCILOR_EXPORT void add(Value item);

    /// Compares two values with all that they hold. A text and a raw text differ.
    /// @param other the value to compare with
    /// @return true if both are the same
    STENCILOR_EXPORT bool operator==(const Value& other) const;

  private:
    friend struct internal::value_access;
    struct List;
    struct Dictionary;

    // In the order of `Kind`.
    using Data = std::variant<std::nullptr_t, bool, String, String, std::unique_ptr<List>,
                              std::unique_ptr<Dictionary>>;

    template <typename T>
    static Value convert(const T& source);
    STENCILOR_EXPORT static Value null() noexcept;
    STENCILOR_EXPORT static Value boolean(bool truth) noexcept;
    STENCILOR_EXPORT static Value plain(String text) noexcept;
    STENCILOR_EXPORT static Value number(std::int64_t number);
    STENCILOR_EXPORT static Value number(std::uint64_t number);
    STENCILOR_EXPORT static Value number(float number);
    STENCILOR_EXPORT static Value number(double number);

    explicit Value(Data data) noexcept;
    unsigned int depth() const noexcept;
    static Data copyOf(const Data& data);

    Data data_;
};

/// A key and its value in the braces that make a dictionary. A value that is made of it takes both.
class Value::Member {
  public:
    /// A member of a dictionary.
    /// @param key a text
    /// @param value anything that becomes a value
    template <internal::text_like Key>
    Member(const Key& key, Value value)
        : key_(internal::makeString(key)), value_(std::move(value)) {}

  private:
    friend class Value;

    // An initializer list is constant; moving from it keeps nested braces from being copied at
    // each level.
    mutable String key_;
    mutable Value value_;
};

template <internal::list_source Range>
requires std::constructible_from < Value, const std::ranges::range_value_t<Range>
& > Value Value::list(Range&& range) {
    Value result = list();
    for (auto&& item : range) {
        // As the type of the elements: `std::vector<bool>` has proxies for them.
        result.add(static_cast<const std::ranges::range_value_t<Range>&>(item));
    }
    return result;
}

template <internal::list_source Range, typename Function>
requires std::constructible_from<
    Value, std::invoke_result_t<Function&, std::ranges::range_reference_t<Range>>>
    Value Value::list(Range&& range, Function function) {
    Value result = list();
    for (auto&& item : range) {
        result.add(std::invoke(function, std::forward<decltype(item)>(item)));
    }
    return result;
}

template <typename T>
Value Value::convert(const T& source) {
    if constexpr (internal::described<T>) {
        return toValue(source);
    } else if constexpr (internal::text_like<T>) {
        return plain(internal::makeString(source));
    } else if constexpr (std::same_as<T, char>) {
        return plain(internal::makeString(std::string_view(&source, 1)));
    } else if constexpr (std::same_as<T, bool>) {
        return boolean(source);
    } else if constexpr (std::same_as<T, float>) {
        return number(source);
    } else if constexpr (std::floating_point<T>) {
        return number(static_cast<double>(source));
    } else if constexpr (std::signed_integral<T>) {
        return number(static_cast<std::int64_t>(source));
    } else if constexpr (std::unsigned_integral<T>) {
        return number(static_cast<std::uint64_t>(source));
    } else if constexpr (internal::is_optional<T>) {
        return source ? Value(*source) : null();
    } else if constexpr (internal::map<T>) {
        Value result;
        for (const auto& [key, value] : source) {
            result.set(internal::makeString(key), value);
        }
        return result;
    } else if constexpr (internal::range<T>) {
        return list(source);
    } else {
        return null();
    }
}

/// How a context is made of a value.
struct ContextOptions {
    /// Gives every element of a list `index` (from 1), `first` and `last`, for a null element, too.
    /// A key that the element has already wins.
    bool positions = false;
};

/// The tree of context classes that a value becomes.
///
/// Text becomes a `ContextString`, raw text a `ContextRawString`, a boolean a `ContextBoolean`, a
/// list a `ContextIterable`, a dictionary a `ContextDictionary`; null becomes a null entry. Beyond
/// that:
///
/// - Dotted names: a dictionary has the members of the dictionaries in it under dotted names as
///   well (`user.name`), at any depth; lists end this. A key that is itself the dotted name wins,
///   and otherwise the longest key that the dotted name begins with.
/// - A dictionary with the key `$boolean` becomes a `ContextBoolean` whose children are the other
///   members; `{% if %}` tests it.
/// - An element of a list that is not a dictionary (a text, a boolean, a list) is reachable as
///   `value`: `{% for tag in tags %}{{ tag.value }}{% endfor %}`.
/// - With `ContextOptions::positions`, elements have `index`, `first` and `last`.
///
/// Ownership: owns the tree. A list or boolean under a dotted name shares what it holds with the
///   original, so the tree can be rendered and read, but not changed.
/// Copying: neither copied nor shared; moving takes constant time. One that was moved from may only
///   be assigned to or destroyed.
/// Threads: may be read by many threads.
/// Errors: `std::invalid_argument` where the value is no dictionary, or a `$boolean` no boolean;
///   `std::length_error` where dotted names would take more than 512 MiB: each member of a
///   dictionary has a name in each dictionary around it, so little data can ask for a lot of
///   memory; `std::bad_alloc`.
class Context {
  public:
    /// Makes a context.
    /// @param value the root, a dictionary; it is copied
    /// @param options what elements of lists have
    STENCILOR_EXPORT explicit Context(const Value& value, ContextOptions options = {});

    /// Takes a context.
    /// @param other may only be assigned to or destroyed afterwards
    STENCILOR_EXPORT Context(Context&& other) noexcept;

    /// Takes a context.
    /// @param other may only be assigned to or destroyed afterwards
    /// @return this context
    STENCILOR_EXPORT Context& operator=(Context&& other) noexcept;

    /// Destroys the tree.
    STENCILOR_EXPORT ~Context();

    /// The root of the tree, as `buildOutput` takes it.
    /// @return the root, valid as long as this context
    STENCILOR_EXPORT operator const ContextBase&() const noexcept;

  private:
    std::unique_ptr<ContextBase> root_;
};

} // namespace kel::Stencilor

/// Makes values of a struct: dictionaries of the members that are named, as the example at the top
/// of this header shows.
///
/// Write it after the struct, in the same namespace, before values are made of the struct. It takes
/// up to 64 public members of any types that become values, structs and containers of them among
/// them.
#define STENCILOR_MEMBERS(Type, ...)                                                               \
    [[maybe_unused]] inline ::kel::Stencilor::Value toValue(const Type& stencilorObject) {         \
        return ::kel::Stencilor::Value{STENCILOR_EXPAND(STENCILOR_EACH(__VA_ARGS__))};             \
    }                                                                                              \
    static_assert(true)

/// @cond
// Each level of expansion has the preprocessor look at the result again, four times the level
// below.
#define STENCILOR_EXPAND(...)                                                                      \
    STENCILOR_EXPAND3(STENCILOR_EXPAND3(STENCILOR_EXPAND3(STENCILOR_EXPAND3(__VA_ARGS__))))
#define STENCILOR_EXPAND3(...)                                                                     \
    STENCILOR_EXPAND2(STENCILOR_EXPAND2(STENCILOR_EXPAND2(STENCILOR_EXPAND2(__VA_ARGS__))))
#define STENCILOR_EXPAND2(...)                                                                     \
    STENCILOR_EXPAND1(STENCILOR_EXPAND1(STENCILOR_EXPAND1(STENCILOR_EXPAND1(__VA_ARGS__))))
#define STENCILOR_EXPAND1(...) __VA_ARGS__
#define STENCILOR_EACH(member, ...)                                                                \
    {#member, stencilorObject.member}, __VA_OPT__(STENCILOR_AGAIN STENCILOR_NOTHING(__VA_ARGS__))
#define STENCILOR_NOTHING ()
#define STENCILOR_AGAIN() STENCILOR_EACH
/// @endcond

#endif
