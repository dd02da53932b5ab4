#ifndef LIBSTENCILOR_VALUE_VALUE_ACCESS_H
#define LIBSTENCILOR_VALUE_VALUE_ACCESS_H

#include <libStencilor/Value.h>

#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace kel::Stencilor {

// Contents of a list or dictionary only change by being replaced as a whole, so each stores its
// depth.

struct Value::List {
    std::vector<Value> items;
    unsigned int depth = 1; // including this list
};

struct Value::Dictionary {
    /// Recomputes the depth after replacing a member that may have been the deepest.
    unsigned int findDepth() const noexcept;

    std::map<String, Value> members;
    unsigned int depth = 1; // including this dictionary
};

namespace internal {

/// The library's access to the contents of values.
struct value_access {
    /// The items of a list.
    static const std::vector<Value>& items(const Value& list) {
        return std::get<std::unique_ptr<Value::List>>(list.data_)->items;
    }
    /// The members of a dictionary.
    static const std::map<String, Value>& members(const Value& dictionary) {
        return std::get<std::unique_ptr<Value::Dictionary>>(dictionary.data_)->members;
    }
    /// A context that owns the tree of `root`.
    static Context makeContext(std::unique_ptr<ContextBase> root) noexcept {
        return Context(value_access(), std::move(root));
    }
};

} // namespace internal

} // namespace kel::Stencilor

#endif
