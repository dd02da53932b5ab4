#ifndef FUZZ_CONTEXT_READER_H
#define FUZZ_CONTEXT_READER_H

#include <libStencilor/Stencilor.h>

#include <cstddef>
#include <memory>
#include <string_view>

namespace fuzz {

/// Makes a context of bytes: any bytes make one, and what can be typed makes all kinds.
///
///     'atext'      the string "text", named a        0a         a null entry
///     +a...}       true, with named children         -a...}     false, with named children
///     {a...}       a dictionary                      *a...}     a plain value with children
///     [a...}       a list, whose elements are written as above, without names
///
/// A name is one byte, which stands for one of a few names that are made to be confused (see
/// `names`). Any byte that begins no value ends the innermost one, and at last the context.
class ContextReader {
  public:
    explicit ContextReader(std::string_view bytes) : rest_(bytes) {}

    /// Reads the children of `parent` up to the byte that ends it.
    void readChildren(kel::Stencilor::ContextBase& parent);

    /// What stands behind that byte.
    std::string_view rest() const { return rest_; }

    /// The number of elements in the longest list that was read.
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
