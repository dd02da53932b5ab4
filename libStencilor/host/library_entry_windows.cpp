#include <windows.h>

#ifdef __MINGW32__
// The C run-time adds thread-local storage to every library through the function that this pointer
// names, and Windows cannot turn off notifications for a library that has such storage. This
// library has none, so it does not need the function. (This compiler stores C++ `thread_local`
// variables elsewhere.)
extern "C" {
extern const PIMAGE_TLS_CALLBACK __dyn_tls_init_callback;
const PIMAGE_TLS_CALLBACK __dyn_tls_init_callback = nullptr;
}
#endif

/// Called by Windows when a process loads or unloads the library, and, unless notifications are
/// off, at the start and end of each thread.
extern "C" BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) {
        ::DisableThreadLibraryCalls(library);
    }
    return TRUE;
}
