# What `cpack` builds: Debian packages with the library, the development files and the program, and
# one archive with everything.

set(CPACK_PACKAGE_NAME stencilor)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_VENDOR "The Stencilor developers")
set(CPACK_PACKAGE_CONTACT "The Stencilor developers <developers@stencilor.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_GENERATOR "DEB;TGZ")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)

string(TOLOWER "${CMAKE_SYSTEM_NAME}" stencilor_system)
string(REPLACE "x86_64" "x64" stencilor_processor "${CMAKE_SYSTEM_PROCESSOR}")
set(
    CPACK_PACKAGE_FILE_NAME
    "stencilor-${PROJECT_VERSION}-${stencilor_system}-${stencilor_processor}"
)

set(CPACK_COMPONENTS_ALL development)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)

# The name of the library's package changes with its binary interface.
set(stencilor_package_version "${PROJECT_VERSION}-1")
set(stencilor_library_package "libstencilor${stencilor_soversion}")
set(stencilor_of_this_version "")
set(stencilor_c_of_this_version "")
if(STENCILOR_SHARED)
    list(APPEND CPACK_COMPONENTS_ALL runtime)
    set(
        stencilor_of_this_version
        "${stencilor_library_package} (= ${stencilor_package_version})"
    )
endif()
if(STENCILOR_SHARED AND STENCILOR_BUILD_C)
    list(APPEND CPACK_COMPONENTS_ALL c)
    set(stencilor_c_of_this_version "libstencilor-c0 (= ${stencilor_package_version})")
endif()
if(STENCILOR_BUILD_TOOLS)
    list(APPEND CPACK_COMPONENTS_ALL program)
endif()
set(stencilor_what_it_is
"A template has text, substitutions, conditions, loops and inclusions, and
nothing else: the host computes, the template places.")

set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME "${stencilor_library_package}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(
    CPACK_DEBIAN_RUNTIME_DESCRIPTION
    "text-template engine to embed in C++ programs
${stencilor_what_it_is}"
)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/cmake/package/triggers")

set(CPACK_DEBIAN_C_PACKAGE_NAME libstencilor-c0)
set(CPACK_DEBIAN_C_PACKAGE_SECTION libs)
set(
    CPACK_DEBIAN_C_DESCRIPTION
    "text-template engine to embed in programs of any language
${stencilor_what_it_is}
.
This is the library with a C interface."
)
set(CPACK_DEBIAN_C_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_C_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/cmake/package/triggers")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libstencilor-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(
    CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
    "text-template engine to embed in C++ programs (development files)
${stencilor_what_it_is}
.
These are the headers, and what CMake and pkg-config need to find the
library."
)
set(
    stencilor_development_needs
    ${stencilor_of_this_version}
    ${stencilor_c_of_this_version}
    nlohmann-json3-dev
)
list(JOIN stencilor_development_needs ", " CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS)

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME stencilor)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION text)
set(
    CPACK_DEBIAN_PROGRAM_DESCRIPTION
    "text templates, rendered from the command line
${stencilor_what_it_is}
The values come from JSON files."
)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_DEPENDS "${stencilor_of_this_version}")
# The two libraries are not installed on the machine that builds the packages.
set(
    CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
    "${PROJECT_BINARY_DIR}/libKel"
    "${PROJECT_BINARY_DIR}/libStencilor"
)

# Licenses and other files that no build installs.
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/package/add_documents.cmake")
set(CPACK_STENCILOR_SOURCE "${PROJECT_SOURCE_DIR}")
set(CPACK_STENCILOR_HEADERS "${STENCILOR_HEADERS}")

include(CPack)
