# Third-party libraries, under the target names of their own packages. All are header-only, so there
# is nothing to ship.

include_guard(GLOBAL)

set(
    STENCILOR_HEADERS
    /usr/include
    CACHE PATH
    "The folder of the header-only libraries, for cross builds"
)
mark_as_advanced(STENCILOR_HEADERS)

# Defines the targets of these libraries for the calling folder and its subfolders.
#
# boost: Boost::headers    cli11: CLI11::CLI11    json: nlohmann_json::nlohmann_json
function(stencilor_require)
    foreach(library IN LISTS ARGN)
        cmake_language(CALL stencilor_require_${library})
    endforeach()
endfunction()

function(stencilor_require_boost)
    stencilor_find(Boost Boost::headers boost)
endfunction()

function(stencilor_require_cli11)
    stencilor_find(CLI11 CLI11::CLI11 CLI)
endfunction()

function(stencilor_require_json)
    stencilor_find(nlohmann_json nlohmann_json::nlohmann_json nlohmann)
endfunction()

# stencilor_find(PACKAGE TARGET HEADERS...)
#
# Defines the target of one header-only library: from its package or, when building for a system
# without packages, from its headers on this machine. HEADERS are its folders and files.
function(stencilor_find package target)
    if(TARGET ${target})
        return()
    endif()
    if(NOT CMAKE_CROSSCOMPILING)
        find_package(${package} REQUIRED)
        return()
    endif()
    find_package(${package} QUIET)
    if(TARGET ${target})
        return()
    endif()

    # A folder of links, because the folder of all headers also contains this system's C library.
    set(staged "${PROJECT_BINARY_DIR}/headers/${package}")
    file(MAKE_DIRECTORY "${staged}")
    foreach(header IN LISTS ARGN)
        if(NOT EXISTS "${STENCILOR_HEADERS}/${header}")
            message(FATAL_ERROR "${package}: '${header}' is not in ${STENCILOR_HEADERS}.")
        endif()
        file(CREATE_LINK "${STENCILOR_HEADERS}/${header}" "${staged}/${header}" SYMBOLIC)
    endforeach()
    add_library(${target} INTERFACE IMPORTED)
    set_target_properties(${target} PROPERTIES INTERFACE_INCLUDE_DIRECTORIES "${staged}")
endfunction()
