#ifndef LIBSTENCILOR_STENCILOR_H
#define LIBSTENCILOR_STENCILOR_H

/// @file
/// Renders text templates against a tree of values.
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
/// A host builds the values on the heap and hands each to a parent, which owns it from then on;
/// destroying the root destroys the tree. Nothing is ever copied deeply.

#include <libKel/String.h>
#include <libStencilor/Export.h>

#include <cstddef>
#include <map>
#include <vector>

// Values are told apart by run-time type information; a class derived without it crashes.
#if !defined(__cpp_rtti) && !defined(STENCILOR_WITHOUT_DERIVED_VALUES)
#error "Compile with -frtti, or define STENCILOR_WITHOUT_DERIVED_VALUES and derive no value class."
#endif

/// The template engine: the values that a template is rendered with, and `buildOutput`.
namespace kel::Stencilor {

/// @cond
namespace internal {
struct context_access;
}
/// @endcond

/// A value of the context: named children, and in the classes below a payload. A plain
/// `ContextBase` is a node that has children and no payload.
///
/// Ownership: owns every child that is not null, and deletes them in ascending order of their
///   keys. A child stands in one place only; held twice it is deleted twice.
/// Copying: shallow. Keys are copied, pointers are shared; a copy and its source must not both be
///   destroyed while they share children. Assigning drops the former children without deleting
///   them. Moving is copying.
/// Threads: may be read by many threads while none changes it. `operator[]` is a change.
/// Errors: none reported; `std::bad_alloc` leaves the value as it was.
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

    /// Gives access to one entry, which is added with a null pointer where there is none.
    /// @param key the name of the child
    /// @return the pointer stored under `key`; what is assigned to it is owned by this value, and
    ///   what stood there before is the caller's again
    ContextBase*& operator[](const String& key);

    /// Stores a child. A pointer that stood there before is not deleted: it is the caller's again.
    /// @param key the name of the child; it is copied
    /// @param value the child, owned by this value from now on; it may be null
    /// @return `value`
    ContextBase* insert(const String& key, ContextBase* value);

    /// Looks a child up.
    /// @return the pointer stored under `key`, or null; borrowed
    ContextBase* find(const String& key) const;

    /// Tells an entry that holds null from one that is missing.
    /// @param key the name of the child
    /// @return true if there is an entry for `key`, be its pointer null or not
    bool containsKey(const String& key) const;

  private:
    friend struct internal::context_access;

    std::map<String, ContextBase*> children;
};

/// A text.
///
/// Ownership, threads, errors: as in `ContextBase`.
/// Copying: the text is copied or moved, the children are always shared with the source.
class STENCILOR_EXPORT ContextString : public ContextBase {
  public:
    /// A text without children.
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

/// A text that a render does not escape. Where nothing is escaped it is a text like any other.
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

/// A boolean, tested by `{% if %}`. Its children are the innermost names inside the block.
///
/// Ownership, copying, threads, errors: as in `ContextBase`. A source that was moved from keeps
///   its value.
class STENCILOR_EXPORT ContextBoolean : public ContextBase {
  public:
    /// A boolean without children.
    /// @param truth the value of the boolean
    ContextBoolean(bool truth);

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

/// Named children and nothing else.
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

    /// The number of entries, those that hold null included.
    std::size_t size() const;
};

/// A list of values that a loop walks in the order they were added.
///
/// Ownership: owns every element that is not null, and deletes them front to back, then its named
///   children.
/// Copying: shallow, as in `ContextBase`: the elements are shared, and assigning drops the former
///   ones without deleting them. Moving is copying.
/// Threads: may be read by many threads while none changes it.
/// Errors: none reported; `std::bad_alloc` leaves the list as it was.
class STENCILOR_EXPORT ContextIterable : public ContextBase {
  public:
    /// A list without elements and children.
    ContextIterable();

    /// See above for copying and ownership.
    /// @{
    ContextIterable(const ContextIterable& other);
    ContextIterable& operator=(const ContextIterable& other);
    ~ContextIterable() override;
    /// @}

    /// Appends an element.
    /// @param value the element, owned by this list from now on; it may be null
    void add(ContextBase* value);

    /// The number of elements, null ones included. Named children do not count.
    std::size_t size() const;

    /// Gives one element.
    /// @param index counted from 0; one at or past `size()` is undefined
    /// @return the pointer at `index`, which may be null; borrowed
    ContextBase* operator[](unsigned int index);

  private:
    friend struct internal::context_access;

    std::vector<ContextBase*> elements;
};

/// Makes values on the heap.
///
/// Ownership: the caller owns the result, until it hands it to a parent value. The builders that
///   take a map or a list put its pointers, null ones included, into the new value, which owns
///   them from then on; the container itself is not changed.
/// Errors: none returns null. `std::bad_alloc` leaves the pointers with the caller.
/// Threads: may be called from any thread.
class STENCILOR_EXPORT ContextFactory {
  public:
    /// A factory holds nothing; nobody needs one, since all builders are static.
    /// @{
    ContextFactory() = default;
    ContextFactory(const ContextFactory&) = default;
    ContextFactory(ContextFactory&&) = default;
    ContextFactory& operator=(const ContextFactory& other);
    ContextFactory& operator=(ContextFactory&& other);
    ~ContextFactory() = default;
    /// @}

    /// Makes a text.
    static ContextString* buildString(const String& value);

    /// Makes a boolean without children.
    static ContextBoolean* buildBoolean(bool value);

    /// Makes a boolean with children, which the new value owns from now on.
    static ContextBoolean* buildBoolean(bool value, const std::map<String, ContextBase*>& children);

    /// A pointer is not a boolean: `buildBoolean("false")` would be true.
    template <typename T>
    static ContextBoolean* buildBoolean(T*) = delete;

    /// A pointer is not a boolean.
    template <typename T>
    static ContextBoolean* buildBoolean(T*, const std::map<String, ContextBase*>&) = delete;

    /// Makes a dictionary without entries.
    static ContextDictionary* buildDictionary();

    /// Makes a dictionary of entries, which it owns from now on.
    static ContextDictionary* buildDictionary(const std::map<String, ContextBase*>& children);

    /// Makes a list without elements.
    static ContextIterable* buildIterable();

    /// Makes a list of elements, which it owns from now on.
    static ContextIterable* buildIterable(const std::vector<ContextBase*>& elements);
};

/// Renders a template.
///
/// A template that does not parse as a whole gives an empty text and one message. Whatever cannot
/// be rendered (a name that is missing or of the wrong kind, a file that cannot be included)
/// contributes no text and one message, and the rest renders normally.
///
/// @param input the template; included files are read while it is rendered
/// @param context the root of the values; its children are the names outside of all blocks
/// @param errors receives the messages behind what it holds already; no separator is added. Where
///   it is not empty at the end of a template that parsed, it is logged once, whole.
/// @return the text, always valid UTF-8
///
/// Ownership: template and context are only read, and nothing of them is kept. Nobody may change
/// the
///   context during the call, a log sink or another thread included; what the call finds then is
///   undefined.
/// Threads: any number of calls may run at once, with one context, too.
/// Errors: only memory exhaustion throws (`std::bad_alloc`, or `std::length_error` where a text
///   outgrows `kel::String`).
STENCILOR_EXPORT String buildOutput(const String& input, const ContextBase& context,
                                    String& errors);

/// The same with the messages logged and dropped.
/// @param input the template
/// @param context the root of the values
/// @return the text, always valid UTF-8
STENCILOR_EXPORT String buildOutput(const String& input, const ContextBase& context);

} // namespace kel::Stencilor

#endif
