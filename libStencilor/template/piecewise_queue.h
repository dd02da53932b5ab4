#ifndef LIBSTENCILOR_TEMPLATE_PIECEWISE_QUEUE_H
#define LIBSTENCILOR_TEMPLATE_PIECEWISE_QUEUE_H

#include <array>
#include <cassert>
#include <cstddef>
#include <memory>
#include <vector>

namespace kel::Stencilor::internal {

/// A queue that grows in pieces, and frees each one once entries are taken from the next.
///
/// A vector would repeatedly move all entries to a larger block, and keep it until the end, in
/// addition to the tree that is built from them. The first `Few` entries are stored in the object,
/// so that a small template needs no allocation for them.
/// Copying: not possible, because it is not needed.
template <typename Entry, std::size_t Few>
class piecewise_queue {
  public:
    piecewise_queue() = default;
    piecewise_queue(const piecewise_queue&) = delete;
    piecewise_queue& operator=(const piecewise_queue&) = delete;

    /// True if no entries remain.
    bool empty() const noexcept { return oldest_ == free_; }

    /// The address of the new entry does not change until it is taken.
    Entry& push_back(const Entry& entry) {
        if (free_ == freeEnd_) {
            addPiece();
        }
        return *free_++ = entry;
    }

    /// Takes the oldest entry. The queue must not be empty.
    Entry take() noexcept {
        assert(!empty());
        if (oldest_ == oldestEnd_) {
            goToNextPiece();
        }
        return *oldest_++;
    }

  private:
    static constexpr std::size_t pieceSize = 256;

    void addPiece() {
        pieces_.push_back(std::unique_ptr<Entry[]>(new Entry[pieceSize]));
        free_ = pieces_.back().get();
        freeEnd_ = free_ + pieceSize;
    }

    void goToNextPiece() noexcept {
        if (taken_ > 0) {
            pieces_[taken_ - 1].reset();
        }
        oldest_ = pieces_[taken_++].get();
        oldestEnd_ = oldest_ + pieceSize;
    }

    std::array<Entry, Few> first_;
    std::vector<std::unique_ptr<Entry[]>> pieces_;
    std::size_t taken_ = 0; // the number of pieces from which entries were taken
    Entry* free_ = first_.data();
    Entry* freeEnd_ = free_ + Few;
    const Entry* oldest_ = first_.data();
    const Entry* oldestEnd_ = oldest_ + Few;
};

} // namespace kel::Stencilor::internal

#endif
