#ifndef FUZZ_CONTEXT_READER_H
#define FUZZ_CONTEXT_READER_H

#include <libStencilor/Stencilor.h>

#include <cstddef>
#include <memory>
#include <string_view>

namespace fuzz {

/// Makes a context from any bytes. Printable characters suffice for all kinds of values:
///
///     'atext'      the string "text", named a        0a         a null entry
///     +a...}       true, with named children         -a...}     false, with named children
///     {a...}       a dictionary                      *a...}     a plain value with children
///     [a...}       a list, whose elements are written as above, without names
///
/// A name is one byte, which represents one of a few names that are easily confused (see `names`).
/// A byte that does not begin a value ends the innermost value, and finally the context.
class ContextReader {
  public:
    explicit ContextReader(std::string_view bytes) : rest_(bytes) {}

    /// Reads the children of `parent` up to the byte that ends it.
    void readChildren(kel::Stencilor::ContextBase& parent);

    /// The input after that byte.
    std::string_view rest() const { return rest_; }

    /// The size of the longest list.
    std::size_t longestList() const { return longestList_; }

  private:
    std::unique_ptr<kel::Stencilor::ContextBase> readValue(char kind);
    template <typename Value>
    std::unique_ptr<Value> readParent(std::unique_ptr<Value> parent);
    std::unique_ptr<kel::Stencilor::ContextIterable> readList();
    kel::String readText();
    char take();

    std::string_view rest_;
    std::size_t longestList_ = 0;
    int depth_ = 0;
};

} // namespace fuzz

#endif
