# How the programs of the tests are made.

include_guard(GLOBAL)
include(GoogleTest) # ours, which compiles it

# All test programs, and those that the thread sanitizer has something to find in.
add_custom_target(stencilor_tests)
add_custom_target(threads_tests)

# The checks themselves need no speed, and compiling them for it takes longer than it saves; those
# that compute more than the libraries do need some. A sanitizer sets its own.
set(STENCILOR_TEST_OPTIONS "")
set(STENCILOR_BUSY_TEST_OPTIONS "")
if(NOT STENCILOR_SLOW_BUILD)
    set(STENCILOR_TEST_OPTIONS -O0)
    set(STENCILOR_BUSY_TEST_OPTIONS -O1)
endif()

# The headers of GoogleTest, which take longer to read than most tests: read once for all programs.
# The preset "release" does without, and so finds the test that forgets to include them.
if(CMAKE_POSITION_INDEPENDENT_CODE) # programs are compiled for it in another way than libraries
    set(CMAKE_DISABLE_PRECOMPILE_HEADERS ON)
endif()
add_library(
    stencilor_test_headers
    OBJECT
    "${PROJECT_SOURCE_DIR}/tests/support/TestHeaders.cpp"
)
stencilor_compile_settings(stencilor_test_headers)
target_compile_options(stencilor_test_headers PRIVATE ${STENCILOR_TEST_OPTIONS})
target_link_libraries(stencilor_test_headers PRIVATE GTest::gmock)
target_precompile_headers(stencilor_test_headers PRIVATE <gmock/gmock.h> <gtest/gtest.h>)

# stencilor_add_test(NAME SOURCES... LIBRARIES ... [TIMEOUT SECONDS] [THREADS] [BUSY])
#
# One program made of SOURCES, and one test of it for ctest: a test for each case would start the
# program each time, which on Windows programs run under Wine takes longer than the case itself.
# Tests of internals link the object libraries, tests of the interface the real shared ones. THREADS
# marks those whose threads share something, BUSY those that compute more than the libraries do.
function(stencilor_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 test "BUSY;THREADS" "TIMEOUT" "LIBRARIES")
    if(NOT test_TIMEOUT)
        set(test_TIMEOUT 300) # under Wine one was seen to do nothing for more than a minute
    endif()

    add_executable(${name} ${test_UNPARSED_ARGUMENTS})
    stencilor_compile_settings(${name})
    target_link_libraries(
        ${name}
        PRIVATE ${test_LIBRARIES} stencilor_test_support GTest::gmock GTest::gtest_main
    )
    # On Windows the headers say otherwise where a function is to be found.
    if("kel_objects" IN_LIST test_LIBRARIES)
        target_compile_definitions(${name} PRIVATE KEL_STATIC)
    endif()
    if("stencilor_objects" IN_LIST test_LIBRARIES)
        target_compile_definitions(${name} PRIVATE STENCILOR_STATIC)
    endif()

    if(test_BUSY)
        target_compile_options(${name} PRIVATE ${STENCILOR_BUSY_TEST_OPTIONS})
    else()
        target_compile_options(${name} PRIVATE ${STENCILOR_TEST_OPTIONS})
        target_precompile_headers(${name} REUSE_FROM stencilor_test_headers)
    endif()

    add_dependencies(stencilor_tests ${name})
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES TIMEOUT ${test_TIMEOUT})
    if(test_THREADS)
        set_tests_properties(${name} PROPERTIES LABELS threads)
        add_dependencies(threads_tests ${name})
    endif()
endfunction()

# Every source file below the calling folder must belong to a target: a test that is not built tests nothing.
function(stencilor_check_all_tests_are_built)
    set(built "")
    set(folders "${CMAKE_CURRENT_SOURCE_DIR}")
    while(folders)
        list(POP_FRONT folders folder)
        get_property(below DIRECTORY "${folder}" PROPERTY SUBDIRECTORIES)
        list(APPEND folders ${below})
        get_property(targets DIRECTORY "${folder}" PROPERTY BUILDSYSTEM_TARGETS)
        foreach(target IN LISTS targets)
            get_target_property(sources ${target} SOURCES)
            get_target_property(shared ${target} INTERFACE_SOURCES)
            foreach(source IN LISTS sources shared)
                cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY "${folder}" NORMALIZE)
                list(APPEND built "${source}")
            endforeach()
        endforeach()
    endwhile()

    file(GLOB_RECURSE written CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp")
    list(FILTER written EXCLUDE REGEX "/tests/package/") # projects of their own, built by their tests
    if(NOT STENCILOR_BUILD_TOOLS)
        list(FILTER written EXCLUDE REGEX "/tests/(analysis|program)/")
    endif()
    if(NOT TARGET Stencilor::Json)
        list(FILTER written EXCLUDE REGEX "/tests/json/")
    endif()
    if(WIN32)
        list(FILTER written EXCLUDE REGEX "/tests/posix/")
    endif()
    if(NOT WIN32 OR NOT STENCILOR_SHARED)
        list(FILTER written EXCLUDE REGEX "/tests/windows/")
    endif()
    if(NOT STENCILOR_TEST_ALL OR CMAKE_CROSSCOMPILING)
        list(FILTER written EXCLUDE REGEX "/tests/editors/")
    endif()
    list(REMOVE_ITEM written ${built})
    if(written)
        message(FATAL_ERROR "These test sources belong to no target: ${written}")
    endif()
endfunction()
