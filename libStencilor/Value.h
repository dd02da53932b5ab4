#ifndef LIBSTENCILOR_VALUE_H
#define LIBSTENCILOR_VALUE_H

/// @file
/// Plain data for templates, and the context made from it.
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
/// A `Value` is plain data, which can be built, copied and changed. A `Context` is what templates
/// are rendered with; build it once to render the same values many times.
///
/// These types convert to a value:
///
/// - strings: `String`, `std::string`, `std::string_view`, character arrays and pointers (a null
///   pointer is an empty string, as in `String`); a `char` is a string of one character,
/// - `true` and `false`, only from `bool`,
/// - integers, including `signed char` and `unsigned char`, in decimal,
/// - floating-point numbers with the fewest digits that read back as the same number, and with an
///   exponent below 1e-6 and from 1e21 on: `0.1`, `100`, `1e+21`, `1.5e-7`; `-0` is `0`,
/// - `nullptr`, `std::nullopt` and an empty `std::optional`, which become null; any other optional
///   becomes its value,
/// - maps whose keys are strings, which become dictionaries; other ranges become lists,
/// - types that have `STENCILOR_MEMBERS`, or a function `Value toValue(const T&)` in their
///   namespace.
///
/// Nothing else compiles: neither other pointers, wide characters or strings of them, nor
/// enumerations or `std::filesystem::path`.

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

// Excludes ranges whose elements are of their own type, such as a path: the conversion would not
// end.
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

// A string is a range, but does not become a list.
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

/// Data for a template: null, a boolean, a string, a list, or a dictionary ordered by key.
///
/// Pairs in braces make a dictionary, and `Value{}` an empty one; `Value{x}` is `x` as a value. Use
/// `list` or a range to make a list.
///
/// Copying: deep. Moving takes constant time and leaves null.
/// Depth: lists and dictionaries nest at most `deepest` levels. An operation that would exceed this
///   throws `std::length_error` and changes nothing.
/// Threads: may be read by any number of threads while none changes it.
/// Errors: `std::length_error` for a string of over 4 GiB - 1 byte, `std::invalid_argument` for a
///   non-finite number, `std::logic_error` for a change that the kind of the value does
///   not support, and `std::bad_alloc`. In each case, the value is unchanged.
class Value {
  public:
    class Member;

    /// The kinds of values.
    enum class Kind {
        Null,      ///< no value; templates do not find it
        Boolean,   ///< true or false
        Text,      ///< a string, which a render may escape; numbers become strings
        RawText,   ///< a string that is never escaped
        List,      ///< a sequence of values
        Dictionary ///< values by key
    };

    /// The maximum nesting of lists and dictionaries, including the outermost one.
    static constexpr unsigned int deepest = 512;

    /// An empty dictionary.
    STENCILOR_EXPORT Value();

    /// A dictionary. If a key occurs twice, the last one wins.
    /// @param members the keys with their values, which are moved from
    STENCILOR_EXPORT Value(std::initializer_list<Member> members);

    /// Converts `source` by the rules at the top of this header.
    /// @param source the source of the conversion, which is copied
    template <internal::value_source T>
    Value(const T& source) : Value(convert(source)) {}

    /// Makes a deep copy.
    /// @param other the value to copy
    STENCILOR_EXPORT Value(const Value& other);

    /// Moves a value.
    /// @param other is null afterwards
    STENCILOR_EXPORT Value(Value&& other) noexcept;

    /// Makes a deep copy.
    /// @param other the value to copy; it may be a part of this one
    /// @return this value
    STENCILOR_EXPORT Value& operator=(const Value& other);

    /// Moves a value.
    /// @param other is null afterwards
    /// @return this value
    STENCILOR_EXPORT Value& operator=(Value&& other) noexcept;

    /// Destroys the value and its contents.
    STENCILOR_EXPORT ~Value();

    /// Makes a string that is never escaped. Use it for text that is known to be safe where it is
    /// inserted, such as HTML that the host generated.
    /// @param text the text
    /// @return the value
    STENCILOR_EXPORT static Value raw(String text);

    /// Makes a list.
    /// @param items the items in order
    /// @return the value
    STENCILOR_EXPORT static Value list(std::initializer_list<Value> items = {});

    /// Makes a list from a range.
    /// @param range the items in order; they are copied
    /// @return the value
    template <internal::list_source Range>
    requires std::constructible_from < Value, const std::ranges::range_value_t<Range>
    & > static Value list(Range&& range);

    /// Makes a list from the results of a function for each item of a range:
    ///
    ///     Value::list(names, [](const std::string& name) { return Value{{"name", name}}; })
    ///
    /// @param range the items in order
    /// @param function called with each item; a pointer to a member works, too
    /// @return the value
    template <internal::list_source Range, typename Function>
    requires std::constructible_from<
        Value, std::invoke_result_t<Function&, std::ranges::range_reference_t<Range>>>
    static Value list(Range&& range, Function function);

    /// Returns the kind of the value.
    /// @return its kind
    Kind kind() const noexcept { return static_cast<Kind>(data_.index()); }

    /// Reads a boolean.
    /// @return true for the boolean true, otherwise false
    STENCILOR_EXPORT bool isTrue() const noexcept;

    /// Returns a string or raw string.
    /// @return the text, valid until the value is changed; empty for other kinds
    STENCILOR_EXPORT const String& text() const noexcept;

    /// Returns the size of a list or dictionary.
    /// @return the number of items or members; 0 for other kinds
    STENCILOR_EXPORT std::size_t size() const noexcept;

    /// Returns an item of a list. Throws `std::out_of_range` if there is none.
    /// @param index counted from 0
    /// @return the item, valid until the value is changed
    STENCILOR_EXPORT const Value& at(std::size_t index) const;

    /// Looks up a member of a dictionary.
    /// @param key the key of the member
    /// @return the member, valid until the value is changed; null if there is none
    STENCILOR_EXPORT const Value* find(const String& key) const noexcept;

    /// Returns the keys of a dictionary.
    /// @return the keys in ascending order; none for other kinds
    STENCILOR_EXPORT std::vector<String> keys() const;

    /// Sets a member of a dictionary, replacing one with the same key. Throws `std::logic_error` if
    /// the value is not a dictionary.
    /// @param key the key of the member
    /// @param value the member
    STENCILOR_EXPORT void set(String key, Value value);

    /// Appends an item to a list. Throws `std::logic_error` if the value is not a list.
    /// @param item the item
    STENCILOR_EXPORT void add(Value item);

    /// Compares two values deeply. A string never equals a raw string.
    /// @param other the value to compare with
    /// @return true if they are equal
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
    STENCILOR_EXPORT static Value boolean(bool value) noexcept;
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

/// A key and its value in the braces that make a dictionary, into which both are moved.
class Value::Member {
  public:
    /// A member of a dictionary.
    /// @param key a string
    /// @param value anything that converts to a value
    template <internal::text_like Key>
    Member(const Key& key, Value value)
        : key_(internal::makeString(key)), value_(std::move(value)) {}

  private:
    friend class Value;

    // An initializer list is constant. Moving from its members avoids copying nested braces at each
    // level.
    mutable String key_;
    mutable Value value_;
};

template <internal::list_source Range>
requires std::constructible_from < Value, const std::ranges::range_value_t<Range>
& > Value Value::list(Range&& range) {
    Value result = list();
    for (auto&& item : range) {
        // Converts to the element type, since `std::vector<bool>` has proxies.
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

/// How to make a context from a value.
struct ContextOptions {
    /// Adds `index` (from 1), `first` and `last` to every element of a list, even to a null one.
    /// Keys that an element already has win.
    bool positions = false;
};

/// The tree of context classes made from a value.
///
/// Text becomes a `ContextString`, raw text a `ContextRawString`, a boolean a `ContextBoolean`, a
/// list a `ContextIterable`, a dictionary a `ContextDictionary`; null becomes a null entry. In
/// addition:
///
/// - Dotted names: a dictionary also has the members of nested dictionaries, at any depth but not
///   inside lists, under dotted names (`user.name`). If several members have the same dotted name,
///   the one with the longest first key wins.
/// - A dictionary with the key `$boolean` becomes a `ContextBoolean` whose children are the other
///   members; `{% if %}` tests it.
/// - An element of a list that is not a dictionary (a string, a boolean, a list) is available as
///   `value`: `{% for tag in tags %}{{ tag.value }}{% endfor %}`.
/// - With `ContextOptions::positions`, elements have `index`, `first` and `last`.
///
/// Ownership: owns the tree. Lists and booleans under dotted names share their contents with the
///   originals, so the tree can be rendered and read, but must not be changed.
/// Copying: not possible; moving takes constant time. A moved-from context may only be assigned or
///   destroyed.
/// Threads: may be read by many threads.
/// Errors: `std::invalid_argument` if the value is not a dictionary, or a `$boolean` is not a
///   boolean; `std::length_error` if dotted names would take more than 512 MiB (a member has a name
///   in each dictionary around it, so little data can require much memory); `std::bad_alloc`.
class Context {
  public:
    /// Makes a context.
    /// @param value the root, a dictionary, which is copied
    /// @param options the members of list elements
    STENCILOR_EXPORT explicit Context(const Value& value, ContextOptions options = {});

    /// Moves a context.
    /// @param other afterwards it may only be assigned to or destroyed
    STENCILOR_EXPORT Context(Context&& other) noexcept;

    /// Moves a context.
    /// @param other afterwards it may only be assigned to or destroyed
    /// @return this context
    STENCILOR_EXPORT Context& operator=(Context&& other) noexcept;

    /// Destroys the tree.
    STENCILOR_EXPORT ~Context();

    /// The root of the tree, for `buildOutput`.
    /// @return the root, valid as long as this context
    STENCILOR_EXPORT operator const ContextBase&() const noexcept;

  private:
    friend struct internal::value_access;

    Context(internal::value_access, std::unique_ptr<ContextBase> root) noexcept;

    std::unique_ptr<ContextBase> root_;
};

} // namespace kel::Stencilor

/// Makes a struct convertible to a value: a dictionary of the named members. The example at the top
/// of this header shows it.
///
/// Write it after the struct, in the same namespace, and before the first conversion. It takes up
/// to 64 public members, of any types that convert to values, including other such structs and
/// containers of them.
#define STENCILOR_MEMBERS(Type, ...)                                                               \
    [[maybe_unused]] inline ::kel::Stencilor::Value toValue(const Type& stencilorObject) {         \
        return ::kel::Stencilor::Value{STENCILOR_EXPAND(STENCILOR_EACH(__VA_ARGS__))};             \
    }                                                                                              \
    static_assert(true)

/// @cond
// Each level makes the preprocessor rescan the result four times as often as the level below.
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
