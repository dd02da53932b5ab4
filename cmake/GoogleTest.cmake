# GoogleTest, compiled with the compiler and flags of the build, which sanitizers and other
# compilers need. Defines the targets GTest::gtest, GTest::gtest_main, GTest::gmock and
# GTest::gmock_main.

include_guard(GLOBAL)

set(STENCILOR_GOOGLETEST /usr/src/googletest CACHE PATH "The sources of GoogleTest")
mark_as_advanced(STENCILOR_GOOGLETEST)

# In a function, so that its settings stay local.
function(stencilor_add_googletest)
    if(TARGET GTest::gmock)
        return()
    endif()
    if(NOT EXISTS "${STENCILOR_GOOGLETEST}/CMakeLists.txt")
        message(FATAL_ERROR "The sources of GoogleTest are not in ${STENCILOR_GOOGLETEST}.")
    endif()
    set(BUILD_SHARED_LIBS OFF)
    set(INSTALL_GTEST OFF)
    set(CMAKE_POLICY_DEFAULT_CMP0077 NEW)
    add_subdirectory(
        "${STENCILOR_GOOGLETEST}"
        "${PROJECT_BINARY_DIR}/googletest"
        EXCLUDE_FROM_ALL
        SYSTEM
    )
    # Optimization and sanitizers would only slow down the compilation. The thread sanitizer stays,
    # because it must see everything that threads do.
    foreach(library gtest gmock)
        target_compile_options(
            ${library}
            PRIVATE
                $<$<NOT:$<BOOL:${STENCILOR_SLOW_BUILD}>>:-O0>
                $<$<CXX_COMPILER_ID:GNU,Clang>:-fno-sanitize=address,undefined>
        )
    endforeach()
endfunction()

stencilor_add_googletest()
