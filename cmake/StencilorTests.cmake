# Builds test programs.

include_guard(GLOBAL)
include(GoogleTest) # ours, which compiles it

# All test programs, and those that are relevant to the thread sanitizer.
add_custom_target(stencilor_tests)
add_custom_target(threads_tests)

# Optimizing the checks takes longer than it saves, except for those that compute more than the
# libraries. Sanitizers set their own level.
set(STENCILOR_TEST_OPTIONS "")
set(STENCILOR_BUSY_TEST_OPTIONS "")
if(NOT STENCILOR_SLOW_BUILD)
    set(STENCILOR_TEST_OPTIONS -O0)
    set(STENCILOR_BUSY_TEST_OPTIONS -O1)
endif()

# The headers that nearly all tests include take longer to compile than most tests, so they are
# precompiled for all programs. The preset "release" does not do so, and thus detects missing
# includes.
if(CMAKE_POSITION_INDEPENDENT_CODE) # programs are compiled differently from libraries
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
target_precompile_headers(
    stencilor_test_headers
    PRIVATE "${PROJECT_SOURCE_DIR}/tests/support/Test.h"
)

# stencilor_add_test(NAME SOURCES... LIBRARIES ... [TIMEOUT SECONDS] [THREADS] [BUSY])
#
# Adds one program made of SOURCES, and one test for ctest. A test for each case would start the
# program each time, which under Wine takes longer than the case itself. Tests of internals link the
# object libraries, tests of the interface the real shared ones. THREADS marks tests whose threads
# share something, BUSY those that compute more than the libraries.
function(stencilor_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 test "BUSY;THREADS" "TIMEOUT" "LIBRARIES")
    if(NOT test_TIMEOUT)
        set(test_TIMEOUT 300) # under Wine, tests have hung for more than a minute
    endif()

    add_executable(${name} ${test_UNPARSED_ARGUMENTS})
    stencilor_compile_settings(${name})
    target_link_libraries(
        ${name}
        PRIVATE ${test_LIBRARIES} stencilor_test_support GTest::gmock GTest::gtest_main
    )
    # On Windows, the headers otherwise declare functions as imported.
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

# Every source file below the calling folder must be named in the CMakeLists.txt of its folder, or
# with its folder in another one, because a test that is not built tests nothing.
function(stencilor_check_all_tests_are_built)
    file(GLOB_RECURSE lists "${CMAKE_CURRENT_SOURCE_DIR}/CMakeLists.txt")
    set(named "")
    foreach(list IN LISTS lists ITEMS "${CMAKE_CURRENT_FUNCTION_LIST_FILE}")
        file(READ "${list}" text)
        cmake_path(GET list PARENT_PATH folder)
        string(REGEX REPLACE "[ (\n]([A-Za-z0-9]+\\.cpp)" " ${folder}/\\1" text "${text}")
        string(APPEND named "${text}")
    endforeach()
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp")
    foreach(source IN LISTS sources)
        cmake_path(GET source FILENAME name)
        cmake_path(GET source PARENT_PATH folder)
        cmake_path(GET folder FILENAME folder)
        if(NOT named MATCHES "[/ ]${folder}/${name}")
            message(FATAL_ERROR "this test source belongs to no target: ${source}")
        endif()
    endforeach()
endfunction()
