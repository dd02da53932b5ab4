#ifndef LIBSTENCILOR_VALUE_VALUE_ACCESS_H
#define LIBSTENCILOR_VALUE_VALUE_ACCESS_H

#include <libStencilor/Value.h>

#include <map>
#include <vector>

namespace kel::Stencilor {

// What a list or dictionary holds changes only by being replaced whole, so each knows its depth.

struct Value::List {
    std::vector<Value> items;
    unsigned int depth = 1; // this list counts
};

struct Value::Dictionary {
    /// The depth, when a member was replaced that may have been the deepest.
    unsigned int findDepth() const noexcept;

    std::map<String, Value> members;
    unsigned int depth = 1; // this dictionary counts
};

namespace internal {

/// The library's own way to what values hold.
struct value_access {
    /// The items of a list.
    static const std::vector<Value>& items(const Value& list) {
        return std::get<std::unique_ptr<Value::List>>(list.data_)->items;
    }
    /// The members of a dictionary.
    static const std::map<String, Value>& members(const Value& dictionary) {
        return std::get<std::unique_ptr<Value::Dictionary>>(dictionary.data_)->members;
    }
};

} // namespace internal

} // namespace kel::Stencilor

#endif
