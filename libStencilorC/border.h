#ifndef LIBSTENCILORC_BORDER_H
#define LIBSTENCILORC_BORDER_H

#include <libStencilor/Value.h>
#include <libStencilorC/stencilor.h>

#include <cstddef>
#include <string_view>
#include <type_traits>

// The boundary between C and C++: exceptions become statuses, and null pointers become exceptions.

namespace kel::Stencilor::internal {

/// Ends a call with a status.
struct call_failure {
    int status;
};

/// Ends a call because a callback returned nonzero.
struct call_stop {
    int code;
};

inline void stopUnlessZero(int code) {
    if (code != 0) {
        throw call_stop{code};
    }
}

inline void failUnlessOk(int status) {
    if (status != STENCILOR_OK) {
        throw call_failure{status};
    }
}

/// Returns the status of the exception that is being handled, and describes the exception if it
/// says more than its status; `error` may be null.
int statusOfException(stencilor_error** error) noexcept;

/// Calls a function and turns its exceptions into a status. The function returns a status, or
/// nothing for `STENCILOR_OK`.
template <typename Function>
int guarded(Function function, stencilor_error** error = nullptr) noexcept {
    if (error != nullptr) {
        *error = nullptr;
    }
    try {
        if constexpr (std::is_void_v<std::invoke_result_t<Function>>) {
            function();
            return STENCILOR_OK;
        } else {
            return function();
        }
    } catch (...) {
        return statusOfException(error);
    }
}

/// Returns what a pointer points to; throws if it is null.
template <typename T>
T& given(T* pointer) {
    failUnlessOk(pointer == nullptr ? STENCILOR_INVALID_ARGUMENT : STENCILOR_OK);
    return *pointer;
}

/// Converts a string argument.
std::string_view given(const char* text, std::size_t size);

/// Where a call stores what it creates; null until then.
template <typename T>
T*& placeOf(T** made) {
    T*& place = given(made);
    place = nullptr;
    return place;
}

/// Creates a context from a value, which must be a dictionary.
inline Context makeContext(const Value& root, bool positions) {
    failUnlessOk(root.kind() == Value::Kind::Dictionary ? STENCILOR_OK : STENCILOR_WRONG_KIND);
    return Context(root, {.positions = positions});
}

/// Returns a string to the host; a NUL must follow it.
inline const char* returned(std::string_view text, std::size_t* size) noexcept {
    if (size != nullptr) {
        *size = text.size();
    }
    return text.data();
}

} // namespace kel::Stencilor::internal

#endif
