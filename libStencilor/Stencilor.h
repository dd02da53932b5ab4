#ifndef LIBSTENCILOR_STENCILOR_H
#define LIBSTENCILOR_STENCILOR_H

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

namespace kel::Stencilor {

namespace internal {
struct context_access;
}

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
    ContextBase();
    ContextBase(const ContextBase& other);
    ContextBase& operator=(const ContextBase& other);
    virtual ~ContextBase();

    /// The pointer stored under `key`; a null one is stored first where there is none.
    ContextBase*& operator[](const String& key);

    /// Stores `value`, which may be null, under `key` and returns it. A pointer that stood there
    /// before is not deleted: it is the caller's again.
    ContextBase* insert(const String& key, ContextBase* value);

    /// The pointer stored under `key`, or null. Borrowed.
    ContextBase* find(const String& key) const;

    /// True if there is an entry for `key`, be its pointer null or not.
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
    ContextString(String text);
    ContextString(const ContextString& other);
    ContextString(ContextString&& other);
    ContextString& operator=(const ContextString& other);
    ContextString& operator=(ContextString&& other);
    ~ContextString() override;

  private:
    friend struct internal::context_access;

    String value;
};

/// A truth, which a conditional block asks for. Its children are the innermost names inside the
/// block.
///
/// Ownership, copying, threads, errors: as in `ContextBase`. A source that was moved from keeps
///   its value.
class STENCILOR_EXPORT ContextBoolean : public ContextBase {
  public:
    ContextBoolean(bool truth);
    ContextBoolean(const ContextBoolean& other);
    ContextBoolean(ContextBoolean&& other);
    ContextBoolean& operator=(const ContextBoolean& other);
    ContextBoolean& operator=(ContextBoolean&& other);
    ~ContextBoolean() override;

  private:
    friend struct internal::context_access;

    bool value;
};

/// Named children and nothing else.
///
/// Ownership, copying, threads, errors: as in `ContextBase`.
class STENCILOR_EXPORT ContextDictionary : public ContextBase {
  public:
    ContextDictionary();
    ContextDictionary(const ContextDictionary& other);
    ContextDictionary(ContextDictionary&& other);
    ContextDictionary& operator=(const ContextDictionary& other);
    ContextDictionary& operator=(ContextDictionary&& other);
    ~ContextDictionary() override;

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
    ContextIterable();
    ContextIterable(const ContextIterable& other);
    ContextIterable& operator=(const ContextIterable& other);
    ~ContextIterable() override;

    /// Appends `value`, which may be null.
    void add(ContextBase* value);

    /// The number of elements, null ones included. Named children do not count.
    std::size_t size() const;

    /// The element at `index`, counted from 0. Borrowed. An index at or past `size()` is undefined.
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
    ContextFactory() = default;
    ContextFactory(const ContextFactory&) = default;
    ContextFactory(ContextFactory&&) = default;
    ContextFactory& operator=(const ContextFactory& other);
    ContextFactory& operator=(ContextFactory&& other);
    ~ContextFactory() = default;

    static ContextString* buildString(const String& value);
    static ContextBoolean* buildBoolean(bool value);
    static ContextBoolean* buildBoolean(bool value, const std::map<String, ContextBase*>& children);
    static ContextDictionary* buildDictionary();
    static ContextDictionary* buildDictionary(const std::map<String, ContextBase*>& children);
    static ContextIterable* buildIterable();
    static ContextIterable* buildIterable(const std::vector<ContextBase*>& elements);
};

/// Renders the template `input` against `context` and returns the text, always valid UTF-8.
///
/// A template that does not parse as a whole gives an empty text and one message. Whatever cannot
/// be rendered (a name that is missing or of the wrong kind, a file that cannot be included)
/// contributes no text and one message, and the rest renders normally.
///
/// `errors` receives the messages behind what it holds already; no separator is added. Where it is
/// not empty at the end of a template that parsed, it is logged once, whole.
/// Ownership: both arguments are only read.
/// Threads: any number of calls may run at once, while no thread changes a context that another
///   call reads.
/// Errors: only memory exhaustion throws (`std::bad_alloc`, or `std::length_error` where a text
///   outgrows `kel::String`).
STENCILOR_EXPORT String buildOutput(const String& input, const ContextBase& context,
                                    String& errors);

/// The same with the messages logged and dropped.
STENCILOR_EXPORT String buildOutput(const String& input, const ContextBase& context);

} // namespace kel::Stencilor

#endif
