#ifndef LIBSTENCILORJSON_NAME_SET_H
#define LIBSTENCILORJSON_NAME_SET_H

#include <functional>
#include <set>
#include <string>
#include <string_view>

namespace kel::Stencilor::internal {

/// The names of one object. In order rather than hashed: whoever chooses the names cannot make n of
/// them take more than n log n comparisons.
template <typename Less = std::less<>>
class NameSet {
  public:
    explicit NameSet(Less less = {}) : names_(less) {}

    /// False if the name is there already.
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
