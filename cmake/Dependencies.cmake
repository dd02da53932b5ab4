# The libraries of others that are built with, under the target names of their own packages. All of
# them are header-only, so nothing of them has to be shipped.

include_guard(GLOBAL)

set(
    STENCILOR_HEADERS
    /usr/include
    CACHE PATH
    "Where a build for another system finds the header-only libraries"
)
mark_as_advanced(STENCILOR_HEADERS)

# Gives the targets of the libraries named to the calling folder and to those below it.
#
# boost: Boost::headers                     cli11: CLI11::CLI11
# fmt: fmt::fmt-header-only                 json: nlohmann_json::nlohmann_json
# spdlog: spdlog::spdlog_header_only        utf8cpp: utf8cpp::utf8cpp
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

function(stencilor_require_fmt)
    stencilor_find(fmt fmt::fmt-header-only fmt DEFINITIONS FMT_HEADER_ONLY=1)
endfunction()

function(stencilor_require_json)
    stencilor_find(nlohmann_json nlohmann_json::nlohmann_json nlohmann)
endfunction()

function(stencilor_require_spdlog)
    if(TARGET spdlog::spdlog_header_only)
        return()
    endif()
    stencilor_require_fmt()
    find_package(Threads REQUIRED)
    stencilor_find(
        spdlog
        spdlog::spdlog_header_only
        spdlog
        DEFINITIONS SPDLOG_FMT_EXTERNAL
    )
    # Its package has the shared library of fmt linked even so.
    set_target_properties(
        spdlog::spdlog_header_only
        PROPERTIES INTERFACE_LINK_LIBRARIES "Threads::Threads;fmt::fmt-header-only"
    )
endfunction()

function(stencilor_require_utf8cpp)
    if(TARGET utf8cpp::utf8cpp)
        return()
    endif()
    stencilor_find(utf8cpp utf8cpp utf8.h utf8)
    # Older packages know only the name without a namespace.
    if(NOT TARGET utf8cpp::utf8cpp)
        add_library(utf8cpp::utf8cpp ALIAS utf8cpp)
    endif()
endfunction()

# stencilor_find(PACKAGE TARGET HEADERS... [DEFINITIONS ...])
#
# Gives the target of one header-only library: from its package, or, when building for a system that
# has no packages, made of its headers on this one. HEADERS are its folders and files.
function(stencilor_find package target)
    cmake_parse_arguments(PARSE_ARGV 2 library "" "" "DEFINITIONS")
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

    # A folder of links, since the folder of all headers holds this system's C library, too.
    set(staged "${PROJECT_BINARY_DIR}/headers/${package}")
    file(MAKE_DIRECTORY "${staged}")
    foreach(header IN LISTS library_UNPARSED_ARGUMENTS)
        if(NOT EXISTS "${STENCILOR_HEADERS}/${header}")
            message(FATAL_ERROR "${package}: there is no '${header}' in ${STENCILOR_HEADERS}.")
        endif()
        file(CREATE_LINK "${STENCILOR_HEADERS}/${header}" "${staged}/${header}" SYMBOLIC)
    endforeach()
    add_library(${target} INTERFACE IMPORTED)
    set_target_properties(
        ${target}
        PROPERTIES
            INTERFACE_INCLUDE_DIRECTORIES "${staged}"
            INTERFACE_COMPILE_DEFINITIONS "${library_DEFINITIONS}"
    )
endfunction()
