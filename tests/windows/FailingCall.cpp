#include "FailingCall.h"

#include <windows.h>

#include <algorithm>
#include <stdexcept>
#include <string>

namespace support {

namespace {

std::string_view failing;
int remaining = 0;
bool failed = false;
int open = 0;

/// True for the call that must fail.
bool isItsTurn(std::string_view function) {
    if (failed || function != failing || remaining-- > 0) {
        return false;
    }
    failed = true;
    ::SetLastError(ERROR_GEN_FAILURE);
    return true;
}

HANDLE WINAPI createFile(const wchar_t* path, DWORD access, DWORD share,
                         SECURITY_ATTRIBUTES* security, DWORD disposition, DWORD flags,
                         HANDLE like) {
    if (isItsTurn("CreateFileW")) {
        return INVALID_HANDLE_VALUE;
    }
    const HANDLE file = ::CreateFileW(path, access, share, security, disposition, flags, like);
    open += file == INVALID_HANDLE_VALUE ? 0 : 1;
    return file;
}

BOOL WINAPI closeHandle(HANDLE handle) {
    --open;
    return ::CloseHandle(handle);
}

DWORD WINAPI getFileType(HANDLE file) {
    return isItsTurn("GetFileType") ? DWORD{FILE_TYPE_UNKNOWN} : ::GetFileType(file);
}

BOOL WINAPI getInformation(HANDLE file, BY_HANDLE_FILE_INFORMATION* information) {
    return isItsTurn("GetFileInformationByHandle")
               ? FALSE
               : ::GetFileInformationByHandle(file, information);
}

DWORD WINAPI getFinalPath(HANDLE file, wchar_t* to, DWORD size, DWORD flags) {
    return isItsTurn("GetFinalPathNameByHandleW")
               ? 0
               : ::GetFinalPathNameByHandleW(file, to, size, flags);
}

DWORD WINAPI getFullPath(const wchar_t* path, DWORD size, wchar_t* to, wchar_t** name) {
    return isItsTurn("GetFullPathNameW") ? 0 : ::GetFullPathNameW(path, size, to, name);
}

BOOL WINAPI readFile(HANDLE file, void* to, DWORD count, DWORD* read, OVERLAPPED* overlapped) {
    if (isItsTurn("ReadFile")) {
        return FALSE;
    }
    if (isItsTurn(FailingCall::end)) {
        *read = 0;
        return TRUE;
    }
    return ::ReadFile(file, to, std::min(count, DWORD{FailingCall::step}), read, overlapped);
}

} // namespace

FailingCall::FailingCall(std::string_view function, int count) {
    const auto replace = [this](const char* name, auto* replacement) {
        replaced_.emplace_back(L"libKel.dll", name, reinterpret_cast<void*>(replacement));
        if (!replaced_.back().isThere()) {
            throw std::runtime_error(std::string("the base library does not call ") + name);
        }
    };
    replace("CreateFileW", createFile);
    replace("CloseHandle", closeHandle);
    replace("GetFileType", getFileType);
    replace("GetFileInformationByHandle", getInformation);
    replace("GetFinalPathNameByHandleW", getFinalPath);
    replace("GetFullPathNameW", getFullPath);
    replace("ReadFile", readFile);
    failing = function;
    remaining = count;
    failed = false;
    open = 0;
}

bool FailingCall::happened() const {
    return failed;
}

int FailingCall::openHandles() const {
    return open;
}

} // namespace support
