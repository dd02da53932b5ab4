# The native build for this machine, for the tests of the WebAssembly build.
add_executable(
    stencilor_web_cases EXCLUDE_FROM_ALL
    "${CMAKE_CURRENT_LIST_DIR}/cases.cpp"
    "${PROJECT_SOURCE_DIR}/tests/support/oracles/RandomTemplate.cpp"
)
stencilor_compile_settings(stencilor_web_cases)
target_link_libraries(stencilor_web_cases PRIVATE Stencilor::Stencilor Stencilor::Json)
