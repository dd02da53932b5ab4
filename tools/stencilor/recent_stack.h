#ifndef TOOLS_STENCILOR_RECENT_STACK_H
#define TOOLS_STENCILOR_RECENT_STACK_H

#include <algorithm>
#include <cstddef>
#include <optional>
#include <vector>

namespace stencilor {

/// What is in force, to be searched from the newest on. What is entered again while it is in force
/// answers no differently, so it only moves to the top: templates that nest the same few blocks
/// deeply do not make the search longer.
template <typename Item>
class RecentStack {
  public:
    /// Where an item stood before, counted from below; nothing if it was not in force.
    using Before = std::optional<std::ptrdiff_t>;

    Before enter(const Item& item) {
        Before before;
        const auto found = std::find(items_.rbegin(), items_.rend(), item);
        if (found != items_.rend()) {
            before = items_.rend() - found - 1;
            items_.erase(items_.begin() + *before);
        }
        items_.push_back(item);
        return before;
    }

    /// Leaves what was entered last.
    void leave(Before before) {
        const Item item = items_.back();
        items_.pop_back();
        if (before) {
            items_.insert(items_.begin() + *before, item);
        }
    }

    const std::vector<Item>& items() const { return items_; }

  private:
    std::vector<Item> items_;
};

} // namespace stencilor

#endif
