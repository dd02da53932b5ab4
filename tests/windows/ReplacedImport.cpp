#include "ReplacedImport.h"

#include <windows.h>

#include <stdexcept>
#include <string_view>

namespace support {

namespace {

template <typename T>
T* at(HMODULE module, DWORD offset) {
    return reinterpret_cast<T*>(reinterpret_cast<char*>(module) + offset);
}

const IMAGE_IMPORT_DESCRIPTOR* firstImport(HMODULE module) {
    const auto* const dos = at<IMAGE_DOS_HEADER>(module, 0);
    const auto* const headers = at<IMAGE_NT_HEADERS>(module, static_cast<DWORD>(dos->e_lfanew));
    return at<IMAGE_IMPORT_DESCRIPTOR>(
        module, headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress);
}

/// The place where a DLL stores the address of an imported function, or null if it does not call
/// it.
void** importOf(HMODULE module, std::string_view function) {
    for (const auto* dll = firstImport(module); dll->Name != 0; ++dll) {
        const auto* name = at<IMAGE_THUNK_DATA>(module, dll->OriginalFirstThunk);
        auto* address = at<IMAGE_THUNK_DATA>(module, dll->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++address) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) {
                continue;
            }
            const auto* const entry =
                at<IMAGE_IMPORT_BY_NAME>(module, static_cast<DWORD>(name->u1.AddressOfData));
            if (function == reinterpret_cast<const char*>(entry->Name)) {
                return reinterpret_cast<void**>(&address->u1.Function);
            }
        }
    }
    return nullptr;
}

void replace(void** import, void* function) {
    DWORD protection = 0;
    ::VirtualProtect(import, sizeof(*import), PAGE_READWRITE, &protection);
    *import = function;
    ::VirtualProtect(import, sizeof(*import), protection, &protection);
}

HMODULE loaded(const wchar_t* dll) {
    const HMODULE module = ::GetModuleHandleW(dll);
    if (module == nullptr) {
        throw std::runtime_error("a DLL whose calls are to be replaced is not loaded");
    }
    return module;
}

} // namespace

ReplacedImport::ReplacedImport(const wchar_t* dll, const char* name, void* replacement)
    : import_(importOf(loaded(dll), name)) {
    if (import_ != nullptr) {
        former_ = *import_;
        replace(import_, replacement);
    }
}

ReplacedImport::~ReplacedImport() {
    if (import_ != nullptr) {
        replace(import_, former_);
    }
}

} // namespace support
