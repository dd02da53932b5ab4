#ifndef TOOLS_STENCILOR_SYSTEM_DESCRIPTOR_H
#define TOOLS_STENCILOR_SYSTEM_DESCRIPTOR_H

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <string_view>
#include <system_error>
#include <utility>

// Files on POSIX systems. Failures throw `std::system_error`.

namespace stencilor::system {

[[noreturn]] inline void fail(int error = errno) {
    throw std::system_error(error, std::generic_category());
}

/// Repeats a call that a signal interrupts.
template <typename Call>
auto retry(Call call) {
    decltype(call()) result;
    do {
        result = call();
    } while (result < 0 && errno == EINTR);
    return result;
}

/// Reads or writes. Waits for a stream that another program has made non-blocking.
template <typename Call>
std::size_t transfer(int descriptor, short event, Call call) {
    ssize_t count = retry(call);
    while (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
        pollfd waiting = {descriptor, event, 0};
        retry([&waiting] { return ::poll(&waiting, 1, -1); });
        count = retry(call);
    }
    if (count < 0) {
        fail();
    }
    return static_cast<std::size_t>(count);
}

class Descriptor {
  public:
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {
        if (descriptor_ < 0) {
            fail();
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (descriptor_ >= 0) {
            ::close(descriptor_);
        }
    }

    int get() const { return descriptor_; }

    /// Closes the file. This can fail, because some file systems only report then that they are
    /// full.
    void close() {
        const int descriptor = std::exchange(descriptor_, -1);
        if (::close(descriptor) != 0 && errno != EINTR) {
            fail();
        }
    }

  private:
    int descriptor_;
};

inline void writeAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        text.remove_prefix(transfer(descriptor, POLLOUT,
                                    [&] { return ::write(descriptor, text.data(), text.size()); }));
    }
}

} // namespace stencilor::system

#endif
