#include <libStencilor/host/trace.h>

#include <atomic>

namespace kel::Stencilor::internal {

namespace {

constexpr std::int32_t messagePriority = 2;

/// The library's only logger. The first gate that needs it creates it, and it is never released.
/// The base library handles several threads that find it null at the same time.
constinit Logger* sharedLogger = nullptr;

Logger* currentLogger() {
#ifdef __cpp_lib_atomic_ref
    return std::atomic_ref(sharedLogger).load(std::memory_order_acquire);
#else // libc++ before 19
    return __atomic_load_n(&sharedLogger, __ATOMIC_ACQUIRE);
#endif
}

Logger& logger() {
    if (currentLogger() == nullptr) {
        LogFactory::createLogger("libStencilor", sharedLogger);
    }
    return *currentLogger();
}

bool messagesAreLogged() {
    return LogFactory::getPriority() <= messagePriority && logger().threshold <= messagePriority &&
           logger().resolvePriority() <= messagePriority;
}

} // namespace

Logger* loggerForTraces() {
    Logger& shared = logger();
    return shared.threshold > tracePriority ? nullptr : &shared;
}

void logErrors(const String& errors) {
    // NOLINTNEXTLINE(readability-container-size-empty): not every base library has empty()
    if (errors.size() == 0 || !messagesAreLogged()) {
        return;
    }
    LoggerStream message;
    message + "437 " + "Errors: " + errors; // the number is part of the text
    logger().log(static_cast<LoggerPriority::LOGGER_PRIORITY>(messagePriority), message);
}

} // namespace kel::Stencilor::internal
