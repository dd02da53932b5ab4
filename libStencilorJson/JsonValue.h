#ifndef LIBSTENCILORJSON_JSONVALUE_H
#define LIBSTENCILORJSON_JSONVALUE_H

/// @file
/// Makes contexts of JSON texts.
///
///     #include <libStencilorJson/JsonValue.h>
///     #include <iostream>
///
///     using namespace kel::Stencilor;
///
///     int main() {
///         try {
///             const auto context = contextFromJsonText(R"({"user": {"name": "world"}})");
///             std::cout << buildOutput("Hello, {{ user.name }}!\n", *context);
///         } catch (const JsonError& error) {
///             std::cerr << "values.json:" << error.what() << '\n'; // values.json:1:10: ...
///         }
///     }
///
/// What becomes of the values:
///
/// - a string becomes a `ContextString`,
/// - a number becomes a `ContextString`, to the digit as it is written,
/// - true and false become a `ContextBoolean`,
/// - an array becomes a `ContextIterable`,
/// - an object becomes a `ContextDictionary`, or with the member `"$boolean": true` or `false` a
///   `ContextBoolean` of that truth, whose children are the other members,
/// - null becomes a null entry, or a null pointer where it is the outermost value.
///
/// Dotted names: the language does not descend at dots, so an object has, beside its own members,
/// the members of the objects in it under their dotted names (`user.name`), at any depth; arrays
/// end this. A member whose own name is the dotted one wins, and otherwise the longest own name
/// that the dotted one begins with. A list or boolean under a dotted name shares what it holds with
/// the original; a dictionary there is empty, for no template can look into it. The tree is
/// therefore to be rendered or read, not to be changed below its root.
///
/// Texts are JSON as RFC 8259 defines it, in UTF-8, of any size, with or without a byte-order mark.
/// Also errors: the same name twice in an object, `$boolean` with a value other than true and
/// false, more than `deepestJson` levels, and objects whose dotted names would take more than
/// `jsonNamesLimit`.
///
/// `libStencilorJson/Json.h` makes contexts of the values of nlohmann-json.
///
/// Ownership: results own all that they hold; arguments are only read.
/// Threads: may be called from any thread.
/// Errors: `JsonError`; `std::bad_alloc`; `std::length_error` where a string, number or name of
/// more
///   than 4 GiB - 1 byte is to become part of a context.

#include <libStencilor/Stencilor.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace kel::Stencilor {

/// The member that makes an object a boolean.
inline constexpr std::string_view jsonBooleanMember = "$boolean";

/// How deep arrays and objects may stand in each other, the outermost being 1 deep.
inline constexpr std::size_t deepestJson = 512;

/// What the dotted names of one context may take, in bytes. Each member of an object nested n deep
/// stands in n objects, so a small text may ask for more than any machine has.
inline constexpr std::uint64_t jsonNamesLimit = 512u * 1024 * 1024;

/// Why JSON was refused, and where. `what()` is `LINE:COLUMN: REASON` for a text, `POINTER: REASON`
/// for a value inside of another one, and otherwise the reason alone.
class JsonError : public std::runtime_error {
  public:
    /// A fault in a text.
    /// @param line counted from 1
    /// @param column counted from 1, in code points
    /// @param reason what is wrong there
    JsonError(std::size_t line, std::size_t column, const std::string& reason);

    /// A fault that has no place in a text.
    /// @param reason what is wrong
    explicit JsonError(const std::string& reason);

    /// Tells where the fault is.
    /// @return the line, counted from 1; 0 where the fault has no place in a text
    std::size_t line() const { return line_; }

    /// Tells where the fault is.
    /// @return the column, counted from 1, in code points; 0 where it has no place in a text
    std::size_t column() const { return column_; }

  private:
    std::size_t line_ = 0;
    std::size_t column_ = 0;
};

/// A value of a JSON text, for hosts that change values before they become a context.
///
/// Numbers stay text: what is rendered is what was written, to the last digit.
struct JsonValue {
    /// The kinds that JSON has.
    enum class Kind {
        Null,    ///< `null`
        Boolean, ///< `true` or `false`
        Number,  ///< a number
        String,  ///< a text
        Array,   ///< values in their order
        Object   ///< values with names
    };

    /// Makes a value a member of this object, in the place of one of that name.
    /// @param name the name of the member
    /// @param value the member
    void set(std::string_view name, JsonValue value);

    Kind kind = Kind::Null;           ///< what it is
    bool truth = false;               ///< of a boolean
    std::string text{};               ///< of a string, UTF-8; of a number as it was written
    std::vector<std::string> names{}; ///< of an object's items, in their order; each occurs once
    std::vector<JsonValue> items{};   ///< of an array or an object
};

/// What the outermost value may be.
enum class JsonRoot {
    Object, ///< an object, which a template needs
    Any     ///< any value, as a part of a context
};

/// Reads a JSON text.
/// @param text UTF-8 that may begin with a byte-order mark
/// @param root what the outermost value may be
/// @return the value
JsonValue parseJson(std::string_view text, JsonRoot root = JsonRoot::Object);

/// Makes a context of a value.
/// @param value the value, which is only read; nested at most `deepestJson` levels deep
/// @return the context; null where the value is JSON's null
std::unique_ptr<ContextBase> contextFromJsonValue(const JsonValue& value);

/// Reads a JSON text and makes a context of it.
/// @param text UTF-8 that may begin with a byte-order mark
/// @param root what the outermost value may be
/// @return the context; null where `root` is `Any` and the text JSON's null
std::unique_ptr<ContextBase> contextFromJsonText(std::string_view text,
                                                 JsonRoot root = JsonRoot::Object);

/// @cond
namespace internal {

// For what makes values of other kinds of JSON, such as `libStencilorJson/Json.h`.

bool isValidUtf8(std::string_view text);

/// `text` as a part of a JSON pointer.
std::string pointerPart(std::string_view text);

} // namespace internal
/// @endcond

} // namespace kel::Stencilor

#endif
