#ifndef LIBSTENCILOR_TEMPLATE_PIECEWISE_QUEUE_H
#define LIBSTENCILOR_TEMPLATE_PIECEWISE_QUEUE_H

#include <array>
#include <cassert>
#include <cstddef>
#include <memory>
#include <vector>

namespace kel::Stencilor::internal {

/// A queue that grows by pieces, and gives each back when the next is begun to take from.
///
/// A vector would move all entries to a block of twice the size again and again, and keep that to
/// the end, beside the tree that is made of them. The first `Few` entries are held in the object,
/// so that a small template takes no memory for them.
/// Copying: not possible, nothing needs two.
template <typename Entry, std::size_t Few>
class piecewise_queue {
  public:
    piecewise_queue() = default;
    piecewise_queue(const piecewise_queue&) = delete;
    piecewise_queue& operator=(const piecewise_queue&) = delete;

    /// How many entries were not taken yet.
    std::size_t size() const noexcept { return size_; }

    /// The new entry stays where it is until it is taken.
    Entry& push_back(const Entry& entry) {
        if (free_ == freeEnd_) {
            addPiece();
        }
        ++size_;
        return *free_++ = entry;
    }

    /// Takes the oldest entry; there is one.
    Entry take() noexcept {
        assert(size_ > 0);
        if (oldest_ == oldestEnd_) {
            goToNextPiece();
        }
        --size_;
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
    std::size_t taken_ = 0; // of the pieces: how many have been begun to take from
    std::size_t size_ = 0;
    Entry* free_ = first_.data();
    Entry* freeEnd_ = free_ + Few;
    const Entry* oldest_ = first_.data();
    const Entry* oldestEnd_ = oldest_ + Few;
};

} // namespace kel::Stencilor::internal

#endif
