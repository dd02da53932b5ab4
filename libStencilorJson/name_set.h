#ifndef LIBSTENCILORJSON_NAME_SET_H
#define LIBSTENCILORJSON_NAME_SET_H

#include <functional>
#include <set>
#include <string>
#include <string_view>

namespace kel::Stencilor::internal {

/// The names of one object. They are ordered, not hashed, so that no choice of names can cause more
/// than n log n comparisons.
template <typename Less = std::less<>>
class NameSet {
  public:
    explicit NameSet(Less less = {}) : names_(less) {}

    /// Returns false if the name already exists.
    bool insert(std::string_view name) {
        const auto next = names_.lower_bound(name);
        if (next != names_.end() && *next == name) {
            return false;
        }
        names_.emplace_hint(next, name);
        return true;
    }

  private:
    std::set<std::string, Less> names_;
};

} // namespace kel::Stencilor::internal

#endif
