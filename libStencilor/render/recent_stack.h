#ifndef LIBSTENCILOR_RENDER_RECENT_STACK_H
#define LIBSTENCILOR_RENDER_RECENT_STACK_H

#include <boost/container/small_vector.hpp>

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <limits>

namespace kel::Stencilor::internal {

/// A stack that is searched from its newest entry to its oldest, for the first match.
///
/// If an entry is entered again while it is in force, its older occurrence need not be searched, so
/// it is moved to the top, and back when it is left. This keeps the stack short if the same few
/// entries nest deeply. Only the newest entries are searched for an older occurrence, which bounds
/// the cost of entering; one further down is harmless.
/// Copying: not possible, because blocks enter and leave the same stack, innermost first.
template <typename Entry>
class recent_stack {
  public:
    /// The position of an entry before it was entered.
    using position = std::size_t;

    /// The position of an entry that was not in force before.
    static constexpr position nowhere = std::numeric_limits<position>::max();

    recent_stack() = default;
    recent_stack(const recent_stack&) = delete;
    recent_stack& operator=(const recent_stack&) = delete;

    /// Makes `entry` the newest. Pass the result to `leave`.
    position enter(const Entry& entry) {
        const Entry* const first = entries_.data();
        const Entry* const last = first + entries_.size();
        const Entry* const oldest = entries_.size() > window ? last - window : first;
        for (const Entry* at = last; at != oldest;) {
            if (*--at == entry) {
                return moveToTop(static_cast<position>(at - first));
            }
        }
        entries_.push_back(entry);
        return nowhere;
    }

    /// Undoes the most recent `enter` that has not been undone.
    void leave(position before) {
        assert(!entries_.empty() && (before == nowhere || before < entries_.size()));
        if (before == nowhere) {
            entries_.pop_back();
        } else {
            moveFromTop(before);
        }
    }

    bool empty() const noexcept { return entries_.empty(); }

    auto newestFirst() const noexcept { return entries_.rbegin(); }
    auto end() const noexcept { return entries_.rend(); }

  private:
    position moveToTop(position from) {
        const auto found = entries_.begin() + static_cast<std::ptrdiff_t>(from);
        std::rotate(found, found + 1, entries_.end());
        return from;
    }

    void moveFromTop(position to) {
        const auto home = entries_.begin() + static_cast<std::ptrdiff_t>(to);
        std::rotate(home, entries_.end() - 1, entries_.end());
    }

    static constexpr std::size_t window = 64;

    boost::container::small_vector<Entry, 8> entries_; // deeper nesting is rare
};

} // namespace kel::Stencilor::internal

#endif
