# Builds for browsers and Node.js with the distribution's emscripten.

execute_process(
    COMMAND em-config EMSCRIPTEN_ROOT
    OUTPUT_VARIABLE emscripten_root
    OUTPUT_STRIP_TRAILING_WHITESPACE
    COMMAND_ERROR_IS_FATAL ANY
)
include("${emscripten_root}/cmake/Modules/Platform/Emscripten.cmake")

# WebAssembly's own exceptions: calls that may throw need no help from JavaScript.
set(CMAKE_CXX_FLAGS_INIT "-fwasm-exceptions")
