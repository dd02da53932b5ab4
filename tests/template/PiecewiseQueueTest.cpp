#include "../support/Memory.h"
#include "../support/Test.h"

#include <libStencilor/template/piecewise_queue.h>

namespace kel::Stencilor::internal {
namespace {

using Queue = piecewise_queue<std::size_t, 16>;

TEST(PiecewiseQueue, ReturnsEntriesInOrder) {
    // 16 are stored in the object, and 256 in each following piece.
    for (const std::size_t count : {0u, 1u, 15u, 16u, 17u, 271u, 272u, 273u, 528u, 529u, 5000u}) {
        SCOPED_TRACE(count);
        Queue queue;
        for (std::size_t number = 0; number < count; ++number) {
            queue.push_back(number);
        }
        EXPECT_EQ(queue.empty(), count == 0);
        for (std::size_t number = 0; number < count; ++number) {
            ASSERT_EQ(queue.take(), number);
        }
        EXPECT_TRUE(queue.empty());
    }
}

TEST(PiecewiseQueue, AlternatesBetweenAddingAndTaking) {
    Queue queue;
    std::size_t taken = 0;
    for (std::size_t number = 0; number < 2000; ++number) {
        queue.push_back(number);
        if (number % 3 != 0) {
            ASSERT_EQ(queue.take(), taken++);
        }
    }
    while (!queue.empty()) {
        ASSERT_EQ(queue.take(), taken++);
    }
    EXPECT_EQ(taken, 2000u);
    queue.push_back(7); // empty again, at any position in a piece
    EXPECT_EQ(queue.take(), 7u);
}

TEST(PiecewiseQueue, KeepsTheAddressesOfEntries) {
    Queue queue;
    std::vector<std::size_t*> places;
    for (std::size_t number = 0; number < 1000; ++number) {
        places.push_back(&queue.push_back(number));
    }
    for (std::size_t* const place : places) {
        *place += 1;
    }
    for (std::size_t number = 0; number < 1000; ++number) {
        ASSERT_EQ(queue.take(), number + 1);
    }
}

TEST(PiecewiseQueue, FreesTakenPieces) {
    constexpr std::size_t count = 1000000;
    Queue queue;
    for (std::size_t number = 0; number < count; ++number) {
        queue.push_back(number);
    }
    const std::uint64_t filled = support::memoryInUse();
    for (std::size_t number = 0; number < count / 2; ++number) {
        queue.take();
    }
    if (filled > 0) { // sanitizers do not report this
        EXPECT_LT(support::memoryInUse(), filled - count / 2 * sizeof(std::size_t) * 9 / 10);
    }
}

} // namespace
} // namespace kel::Stencilor::internal
