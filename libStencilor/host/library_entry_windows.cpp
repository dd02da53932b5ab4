#include <windows.h>

/// Called by Windows when a process loads or unloads the library, and, if it were not turned off,
/// at the start and end of each of its threads.
extern "C" BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) {
        ::DisableThreadLibraryCalls(library);
    }
    return TRUE;
}
