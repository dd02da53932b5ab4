#include "SmallStackThread.h"

#include <stdexcept>

#ifdef _WIN32
#include <process.h>
#include <windows.h>
#else
#include <pthread.h>
#endif

namespace support {

#ifdef _WIN32

namespace {

unsigned __stdcall runWork(void* work) {
    (*static_cast<const std::function<void()>*>(work))();
    return 0;
}

} // namespace

void runWithStack(std::size_t stackSize, const std::function<void()>& work) {
    auto* const argument = const_cast<std::function<void()>*>(&work);
    const std::uintptr_t thread =
        ::_beginthreadex(nullptr, static_cast<unsigned>(stackSize), runWork, argument,
                         STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    if (thread == 0) {
        throw std::runtime_error("cannot start a thread");
    }
    const auto handle = reinterpret_cast<HANDLE>(thread);
    ::WaitForSingleObject(handle, INFINITE);
    ::CloseHandle(handle);
}

#else

namespace {

void* runWork(void* work) {
    (*static_cast<const std::function<void()>*>(work))();
    return nullptr;
}

} // namespace

void runWithStack(std::size_t stackSize, const std::function<void()>& work) {
    pthread_attr_t attributes;
    pthread_t thread;
    auto* const argument = const_cast<std::function<void()>*>(&work);
    const bool started = ::pthread_attr_init(&attributes) == 0 &&
                         ::pthread_attr_setstacksize(&attributes, stackSize) == 0 &&
                         ::pthread_create(&thread, &attributes, runWork, argument) == 0;
    ::pthread_attr_destroy(&attributes);
    if (!started) {
        throw std::runtime_error("cannot start a thread");
    }
    ::pthread_join(thread, nullptr);
}

#endif

} // namespace support
