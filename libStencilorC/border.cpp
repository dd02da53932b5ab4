#include <libStencilorC/border.h>
#include <libStencilorC/handles.h>

#include <cstring>
#include <new>
#include <stdexcept>

namespace kel::Stencilor::internal {

namespace {

int describe(stencilor_error** error, stencilor_error description) noexcept {
    const int status = description.status;
    if (error != nullptr) {
        *error = new (std::nothrow) stencilor_error(std::move(description));
    }
    return status;
}

int describe(stencilor_error** error, int status, const std::exception& exception) {
    return describe(error, {.status = status, .text = exception.what()});
}

/// Throws only if memory is exhausted.
int translateException(stencilor_error** error) {
    try {
        throw;
    } catch (const call_failure& failure) {
        return failure.status;
    } catch (const call_stop&) {
        return STENCILOR_STOPPED;
    } catch (const std::bad_alloc&) {
        return STENCILOR_OUT_OF_MEMORY;
    } catch (const JsonError& exception) {
        return describe(error, {.status = STENCILOR_BAD_JSON,
                                .text = std::string(exception.reason()),
                                .offset = exception.offset(),
                                .line = exception.line(),
                                .column = exception.column()});
    } catch (const std::length_error& exception) {
        return describe(error, STENCILOR_TOO_LARGE, exception);
    } catch (const std::invalid_argument& exception) {
        return describe(error, STENCILOR_INVALID_ARGUMENT, exception);
    } catch (const std::logic_error& exception) { // a value cannot be changed like this
        return describe(error, STENCILOR_WRONG_KIND, exception);
    } catch (...) {
        return STENCILOR_INTERNAL_ERROR;
    }
}

} // namespace

int statusOfException(stencilor_error** error) noexcept {
    try {
        return translateException(error);
    } catch (...) {
        return STENCILOR_OUT_OF_MEMORY;
    }
}

std::string_view given(const char* text, std::size_t size) {
    if (size == 0) {
        return {};
    }
    given(text);
    return {text, size == STENCILOR_NUL_TERMINATED ? std::strlen(text) : size};
}

} // namespace kel::Stencilor::internal
