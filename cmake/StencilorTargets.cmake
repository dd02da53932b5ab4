# Settings common to all targets of this project. They do not affect a project that includes this
# one, because they are set on targets, not on folders or on the whole build.

include_guard(GLOBAL)

option(STENCILOR_WARNINGS_AS_ERRORS "Treat compiler warnings as errors" OFF)
mark_as_advanced(STENCILOR_WARNINGS_AS_ERRORS)

add_library(stencilor_warnings INTERFACE)
target_compile_options(
    stencilor_warnings
    INTERFACE
        $<$<CXX_COMPILER_ID:GNU,Clang>:-Wall;-Wextra;-Wpedantic;-Wconversion;-Wsign-conversion;-Wshadow>
        $<$<COMPILE_LANG_AND_ID:CXX,GNU,Clang>:-Wnon-virtual-dtor;-Wold-style-cast>
        # GCC 12 warns about its own std::string in optimized "text" + string expressions.
        $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>
        # Sources that are compiled together see each other's names and types.
        $<$<BOOL:${CMAKE_UNITY_BUILD}>:-Wno-shadow>
        $<$<AND:$<BOOL:${CMAKE_UNITY_BUILD}>,$<CXX_COMPILER_ID:GNU>>:-Wno-subobject-linkage>
        # No text is longer than the memory of a 32-bit system, which is what sizes are narrowed to.
        $<$<EQUAL:${CMAKE_SIZEOF_VOID_P},4>:-Wno-shorten-64-to-32>
        $<$<BOOL:${STENCILOR_WARNINGS_AS_ERRORS}>:-Werror>
)

# True if the libraries are several times slower than the shipped ones: without optimization, or with
# a sanitizer.
set(STENCILOR_SLOW_BUILD OFF)
if(CMAKE_BUILD_TYPE STREQUAL "Debug" OR CMAKE_CXX_FLAGS MATCHES "-O0|-fsanitize=")
    set(STENCILOR_SLOW_BUILD ON)
endif()

# The settings of every compiled target.
function(stencilor_compile_settings target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    set_target_properties(
        ${target}
        PROPERTIES CXX_EXTENSIONS OFF CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON
    )
    # Calls within a library are direct, not through the table that lets another module replace the
    # target. Compilers other than GCC do so by default.
    target_compile_options(
        ${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-semantic-interposition>
    )
    if(NOT WIN32)
        # Calls to other libraries load the target's address instead of going through a stub, which
        # makes small templates faster.
        target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU,Clang>:-fno-plt>)
    else()
        # Otherwise <windows.h> defines macros for min and max.
        target_compile_definitions(${target} PRIVATE NOMINMAX)
    endif()
    target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:stencilor_warnings>)
endfunction()

if(STENCILOR_SHARED)
    set(stencilor_library_type SHARED)
else()
    set(stencilor_library_type STATIC)
endif()

# Defines, both for compiling and for using a static library, that its headers export and import
# nothing.
function(stencilor_mark_static definition objects library)
    if(NOT STENCILOR_SHARED)
        target_compile_definitions(${objects} PUBLIC ${definition})
        target_compile_definitions(${library} INTERFACE ${definition})
    endif()
endfunction()

# A folder that only contains a link to the sources of one library, for include paths
# (`#include <FOLDER/...>`). The root of the source tree is unsuitable: it contains both libraries,
# and would hide the headers of another base library.
function(stencilor_include_folder folder result)
    set(staged "${PROJECT_BINARY_DIR}/include/${folder}")
    file(MAKE_DIRECTORY "${staged}")
    file(CREATE_LINK "${PROJECT_SOURCE_DIR}/${folder}" "${staged}/${folder}" SYMBOLIC)
    set(${result} "${staged}" PARENT_SCOPE)
endfunction()

# Exports what exports.map in the target's source folder lists. On Windows, the marks in the headers
# suffice.
function(stencilor_limit_exports target)
    if(WIN32 OR NOT STENCILOR_SHARED)
        return()
    endif()
    set(map "${CMAKE_CURRENT_SOURCE_DIR}/exports.map")
    target_link_options(${target} PRIVATE "LINKER:--version-script=${map}")
    set_target_properties(${target} PROPERTIES LINK_DEPENDS "${map}")
endfunction()

# The settings of objects that are linked into another library, and export or import nothing
# themselves.
function(stencilor_embed_settings target)
    stencilor_compile_settings(${target})
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
    target_compile_definitions(${target} PRIVATE KEL_STATIC STENCILOR_STATIC)
endfunction()

# TARGET_embedded: the sources of a target, compiled with these settings.
function(stencilor_add_embedded_objects target include_folders)
    get_target_property(sources ${target} SOURCES)
    get_target_property(folder ${target} SOURCE_DIR)
    list(TRANSFORM sources PREPEND "${folder}/")
    add_library(${target}_embedded OBJECT ${sources})
    stencilor_embed_settings(${target}_embedded)
    target_include_directories(${target}_embedded PRIVATE ${include_folders})
    target_compile_definitions(
        ${target}_embedded
        PRIVATE "STENCILOR_VERSION=\"${PROJECT_VERSION}\""
    )
    target_link_libraries(
        ${target}_embedded
        PRIVATE Boost::headers nlohmann_json::nlohmann_json
    )
endfunction()
