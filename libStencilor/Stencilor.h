#ifndef LIBSTENCILOR_STENCILOR_H
#define LIBSTENCILOR_STENCILOR_H

/// @file
/// Renders text templates with a tree of values.
///
///     #include <libStencilor/Stencilor.h>
///     #include <iostream>
///
///     using namespace kel::Stencilor;
///
///     int main() {
///         ContextDictionary context;
///         context.insert("name", ContextFactory::buildString("world"));
///         kel::String errors;
///         std::cout << buildOutput("Hello, {{ name }}!\n", context, errors);
///         return errors.size() == 0 ? 0 : 1;
///     }
///
/// Hosts allocate the values on the heap and pass each to a parent, which owns it from then on.
/// Destroying the root destroys the tree. No operation makes a deep copy.

#include <libKel/String.h>
#include <libStencilor/Export.h>

#include <cstddef>
#include <map>
#include <vector>

// Values are distinguished by run-time type information; a class derived without it would crash.
#if !defined(__cpp_rtti) && !defined(STENCILOR_WITHOUT_DERIVED_VALUES)
#error "Compile with -frtti, or define STENCILOR_WITHOUT_DERIVED_VALUES and derive no value class."
#endif

/// The template engine: the values that a template is rendered with, and `buildOutput`.
namespace kel::Stencilor {

/// @cond
namespace internal {
struct context_access;
class child_map;
} // namespace internal
/// @endcond

/// A value of the context: named children and, in the classes below, a payload. A plain
/// `ContextBase` only has children.
///
/// Ownership: owns its non-null children and deletes them in ascending order of their keys. A child
///   must have only one place; if it has two, it is deleted twice.
/// Copying: shallow. Keys are copied and pointers are shared, so a copy and its source must not
///   both be destroyed while they share children. Assignment drops the previous children without
///   deleting them. Moving copies.
/// Threads: may be read by any number of threads while none changes it. `operator[]` counts as a
///   change.
/// Errors: only `std::bad_alloc`, which leaves the value unchanged.
class STENCILOR_EXPORT ContextBase {
  public:
    /// A value without children.
    ContextBase();

    /// See above for copying and ownership.
    /// @{
    ContextBase(const ContextBase& other);
    ContextBase& operator=(const ContextBase& other);
    virtual ~ContextBase();
    /// @}

    /// Accesses an entry, and adds it with a null pointer if it does not exist.
    /// @param key the name of the child
    /// @return the pointer stored under `key`. This value owns what is assigned to it; the previous
    ///   pointer belongs to the caller again.
    ContextBase*& operator[](const String& key);

    /// Stores a child. A previous pointer is not deleted; it belongs to the caller again.
    /// @param key the name of the child; it is copied
    /// @param value the child, which this value owns from now on; may be null
    /// @return `value`
    ContextBase* insert(const String& key, ContextBase* value);

    /// Looks up a child.
    /// @return the pointer stored under `key`, or null; borrowed
    ContextBase* find(const String& key) const;

    /// Distinguishes an entry that holds null from a missing one.
    /// @param key the name of the child
    /// @return true if there is an entry for `key`, even if its pointer is null
    bool containsKey(const String& key) const;

  private:
    friend struct internal::context_access;

    internal::child_map* children = nullptr; // none while there are no entries
};

/// A string.
///
/// Ownership, threads, errors: as in `ContextBase`.
/// Copying: the text is copied or moved; the children are always shared with the source.
class STENCILOR_EXPORT ContextString : public ContextBase {
  public:
    /// A string without children.
    ContextString(String text);

    /// See above for copying and ownership.
    /// @{
    ContextString(const ContextString& other);
    ContextString(ContextString&& other);
    ContextString& operator=(const ContextString& other);
    ContextString& operator=(ContextString&& other);
    ~ContextString() override;
    /// @}

  private:
    friend struct internal::context_access;

    String value;
};

/// A string that is never escaped. `buildOutput`, which escapes nothing, treats it as any other.
///
/// Ownership, copying, threads, errors: as in `ContextString`.
class STENCILOR_EXPORT ContextRawString : public ContextString {
  public:
    /// A raw text without children.
    ContextRawString(String text);

    /// See above for copying and ownership.
    /// @{
    ContextRawString(const ContextRawString& other);
    ContextRawString(ContextRawString&& other);
    ContextRawString& operator=(const ContextRawString& other);
    ContextRawString& operator=(ContextRawString&& other);
    ~ContextRawString() override;
    /// @}
};

/// A boolean, tested by `{% if %}`. Its children form the innermost scope inside the block.
///
/// Ownership, copying, threads, errors: as in `ContextBase`. A moved-from source keeps its value.
class STENCILOR_EXPORT ContextBoolean : public ContextBase {
  public:
    /// A boolean without children.
    /// @param isTrue the value of the boolean
    ContextBoolean(bool isTrue);

    /// A pointer is not a boolean: `ContextBoolean("false")` would be true.
    template <typename T>
    ContextBoolean(T*) = delete;

    /// See above for copying and ownership.
    /// @{
    ContextBoolean(const ContextBoolean& other);
    ContextBoolean(ContextBoolean&& other);
    ContextBoolean& operator=(const ContextBoolean& other);
    ContextBoolean& operator=(ContextBoolean&& other);
    ~ContextBoolean() override;
    /// @}

  private:
    friend struct internal::context_access;

    bool value;
};

/// Named children only.
///
/// Ownership, copying, threads, errors: as in `ContextBase`.
class STENCILOR_EXPORT ContextDictionary : public ContextBase {
  public:
    /// A dictionary without entries.
    ContextDictionary();

    /// See above for copying and ownership.
    /// @{
    ContextDictionary(const ContextDictionary& other);
    ContextDictionary(ContextDictionary&& other);
    ContextDictionary& operator=(const ContextDictionary& other);
    ContextDictionary& operator=(ContextDictionary&& other);
    ~ContextDictionary() override;
    /// @}

    /// The number of entries, including null ones.
    std::size_t size() const;
};

/// A list of values, in the order in which a loop visits them.
///
/// Ownership: owns its non-null elements and deletes them from front to back, then its named
///   children.
/// Copying: shallow, as in `ContextBase`: elements are shared, and assignment drops the previous
///   ones without deleting them. Moving copies.
/// Threads: may be read by many threads while none changes it.
/// Errors: only `std::bad_alloc`, which leaves the list unchanged.
class STENCILOR_EXPORT ContextIterable : public ContextBase {
  public:
    /// A list without elements or children.
    ContextIterable();

    /// See above for copying and ownership.
    /// @{
    ContextIterable(const ContextIterable& other);
    ContextIterable& operator=(const ContextIterable& other);
    ~ContextIterable() override;
    /// @}

    /// Appends an element.
    /// @param value the element, which this list owns from now on; may be null
    void add(ContextBase* value);

    /// The number of elements, including null ones. Named children do not count.
    std::size_t size() const;

    /// Accesses an element.
    /// @param index counted from 0; undefined behavior at or past `size()`
    /// @return the pointer at `index`, which may be null; borrowed
    ContextBase* operator[](unsigned int index);

  private:
    friend struct internal::context_access;

    std::vector<ContextBase*> elements;
};

/// Creates values on the heap.
///
/// Ownership: the caller owns the result until it passes it to a parent value. The new value
///   takes ownership of the pointers in a map or vector, null ones too. The container is unchanged.
/// Errors: `std::bad_alloc`; the pointers then still belong to the caller.
/// Threads: all functions may be called from any thread.
class STENCILOR_EXPORT ContextFactory {
  public:
    /// A factory has no state. No instance is needed, because all builders are static.
    /// @{
    ContextFactory() = default;
    ContextFactory(const ContextFactory&) = default;
    ContextFactory(ContextFactory&&) = default;
    ContextFactory& operator=(const ContextFactory& other);
    ContextFactory& operator=(ContextFactory&& other);
    ~ContextFactory() = default;
    /// @}

    /// Creates a string.
    static ContextString* buildString(const String& value);

    /// Creates a boolean without children.
    static ContextBoolean* buildBoolean(bool value);

    /// Creates a boolean that owns these children.
    static ContextBoolean* buildBoolean(bool value, const std::map<String, ContextBase*>& children);

    /// A pointer is not a boolean: `buildBoolean("false")` would be true.
    template <typename T>
    static ContextBoolean* buildBoolean(T*) = delete;

    /// A pointer is not a boolean.
    template <typename T>
    static ContextBoolean* buildBoolean(T*, const std::map<String, ContextBase*>&) = delete;

    /// Creates an empty dictionary.
    static ContextDictionary* buildDictionary();

    /// Creates a dictionary that owns these entries.
    static ContextDictionary* buildDictionary(const std::map<String, ContextBase*>& children);

    /// Creates an empty list.
    static ContextIterable* buildIterable();

    /// Creates a list that owns these elements.
    static ContextIterable* buildIterable(const std::vector<ContextBase*>& elements);
};

/// Renders a template.
///
/// A malformed template produces an empty string and one message. What cannot be rendered (a name
/// that is missing or has the wrong kind, a file that cannot be included) produces no text and one
/// message; everything else is rendered.
///
/// @param input the template; included files are read during the call
/// @param context the root of the values; its children are the global names
/// @param errors the messages are appended to it, without a separator. If the template is well
///   formed and this is not empty at the end of the call, it is logged once, as a whole.
/// @return the text, always valid UTF-8
///
/// Ownership: template and context are only read, and not kept. The context must not be changed
///   during the call, neither by another thread nor by a log sink; otherwise the behavior is
///   undefined.
/// Threads: any number of calls may run at once, even with the same context.
/// Errors: only `std::bad_alloc`, and `std::length_error` if a string would be too long for
///   `kel::String`.
STENCILOR_EXPORT String buildOutput(const String& input, const ContextBase& context,
                                    String& errors);

/// The same, but messages are only logged.
/// @param input the template
/// @param context the root of the values
/// @return the text, always valid UTF-8
STENCILOR_EXPORT String buildOutput(const String& input, const ContextBase& context);

} // namespace kel::Stencilor

#endif
