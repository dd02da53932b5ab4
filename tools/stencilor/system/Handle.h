#ifndef TOOLS_STENCILOR_SYSTEM_HANDLE_H
#define TOOLS_STENCILOR_SYSTEM_HANDLE_H

#include <windows.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

// Files on Windows. Failures throw `std::system_error`.

namespace stencilor::system {

[[noreturn]] inline void fail(DWORD error = ::GetLastError()) {
    throw std::system_error(static_cast<int>(error), std::system_category());
}

class Handle {
  public:
    explicit Handle(HANDLE handle) : handle_(handle) {
        if (handle_ == INVALID_HANDLE_VALUE) {
            fail();
        }
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() { close(); }

    HANDLE get() const { return handle_; }

    void close() {
        if (handle_ != INVALID_HANDLE_VALUE) {
            ::CloseHandle(std::exchange(handle_, INVALID_HANDLE_VALUE));
        }
    }

  private:
    HANDLE handle_;
};

/// The path to pass to the system. Long paths use the form without the limit of 260 characters.
/// (The manifest alone only lifts the limit on some machines.)
std::filesystem::path widePath(const std::string& path);

void writeAll(HANDLE file, std::string_view text);

} // namespace stencilor::system

#endif
