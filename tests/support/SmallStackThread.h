#ifndef TESTS_SUPPORT_SMALLSTACKTHREAD_H
#define TESTS_SUPPORT_SMALLSTACKTHREAD_H

#include <cstddef>
#include <functional>

namespace support {

/// Runs `work` in a thread with a stack of `stackSize` bytes, and waits for its end. Stack overflow
/// ends the program. `work` must not throw.
void runWithStack(std::size_t stackSize, const std::function<void()>& work);

} // namespace support

#endif
