#include <windows.h>

#ifdef __MINGW32__
// The run-time puts thread-local storage into every library, by the function that this pointer of
// its would name, and Windows keeps the notifications on for whatever has such storage. This
// library has none and does without the function. (Variables that C++ calls `thread_local` are kept
// elsewhere by this compiler.)
extern "C" {
extern const PIMAGE_TLS_CALLBACK __dyn_tls_init_callback;
const PIMAGE_TLS_CALLBACK __dyn_tls_init_callback = nullptr;
}
#endif

/// Called by Windows when a process loads or unloads the library, and, were it not turned off, at
/// the start and the end of each of its threads.
extern "C" BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) {
        ::DisableThreadLibraryCalls(library);
    }
    return TRUE;
}
