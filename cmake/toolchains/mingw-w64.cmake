# Builds for 64-bit Windows with MinGW-w64, in the variant with POSIX threads, because the other
# variant has no std::thread. The result runs under Wine.

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)

set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# Only programs of the build machine are used, not its libraries or headers.
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The compiler's own DLLs, which every program and library needs at run time. They are also shipped.
set(MINGW_RUNTIME_DLLS)
set(mingw_runtime_folders)
foreach(dll IN ITEMS libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(
        COMMAND "${CMAKE_CXX_COMPILER}" -print-file-name=${dll}
        OUTPUT_VARIABLE dll
        OUTPUT_STRIP_TRAILING_WHITESPACE
        COMMAND_ERROR_IS_FATAL ANY
    )
    get_filename_component(dll "${dll}" REALPATH)
    get_filename_component(folder "${dll}" DIRECTORY)
    list(APPEND MINGW_RUNTIME_DLLS "${dll}")
    list(APPEND mingw_runtime_folders "${folder}")
endforeach()
list(REMOVE_DUPLICATES mingw_runtime_folders)

get_filename_component(wine_run "${CMAKE_CURRENT_LIST_DIR}/../../scripts/wine-run" ABSOLUTE)
set(CMAKE_CROSSCOMPILING_EMULATOR "${wine_run}" --prefix "${CMAKE_BINARY_DIR}/wine")
foreach(folder IN LISTS mingw_runtime_folders)
    list(APPEND CMAKE_CROSSCOMPILING_EMULATOR --dlls "${folder}")
endforeach()
