#ifndef TESTS_SUPPORT_SMALLSTACKTHREAD_H
#define TESTS_SUPPORT_SMALLSTACKTHREAD_H

#include <cstddef>
#include <functional>

namespace support {

/// Runs `work` in a thread whose stack has `stackSize` bytes, and waits for its end. What takes
/// more stack ends the program. `work` may not throw.
void runWithStack(std::size_t stackSize, const std::function<void()>& work);

} // namespace support

#endif
