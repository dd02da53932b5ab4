#ifndef TESTS_SUPPORT_EXHAUSTEDMEMORY_H
#define TESTS_SUPPORT_EXHAUSTEDMEMORY_H

#include "Build.h"
#include "FailingAllocation.h"
#include "Test.h"

// The address sanitizer detects leaks and double deletions.

namespace support {

/// Calls `action` with each of its allocations failing in turn, each time on a new `make()`, and
/// then `check` on the result.
template <typename Make, typename Action, typename Check>
void failEachAllocation(Make make, Action action, Check check) {
    bool failed = true;
    for (int count = 0; failed; ++count) {
        auto subject = make();
        {
            const FailingAllocation failure(count);
            try {
                action(*subject);
            } catch (const std::bad_alloc&) {
            }
            failed = failure.happened();
        }
        if (failed) {
            SCOPED_TRACE(count);
            check(*subject);
        } else {
            EXPECT_GT(count, 0) << "nothing was allocated at all";
        }
    }
}

class ExhaustedMemory : public testing::Test {
  protected:
    void SetUp() override {
        if (threadSanitized) {
            GTEST_SKIP() << "the thread sanitizer does not let allocations fail";
        }
    }
};

} // namespace support

#endif
