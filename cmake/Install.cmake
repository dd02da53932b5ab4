# What `cmake --install` installs: the libraries with their headers and CMake packages, and the
# program. Nothing that is installed names a folder of this machine, so it can be moved.

include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

# stencilor_install_library(TARGET PACKAGE FOLDER [COMPONENT NAME] [RUNTIME COMPONENT] HEADERS...)
#
# The package defines the target in its own namespace, or only if its component NAME is requested.
# The headers are included as <FOLDER/HEADER>. Runtime files are installed with the component
# `runtime`, or another one.
function(stencilor_install_library target package folder)
    cmake_parse_arguments(PARSE_ARGV 3 library "" "COMPONENT;RUNTIME" "")
    if(NOT library_RUNTIME)
        set(library_RUNTIME runtime)
    endif()
    set(headers ${library_UNPARSED_ARGUMENTS})
    list(TRANSFORM headers PREPEND "${PROJECT_SOURCE_DIR}/${folder}/")
    set_property(GLOBAL APPEND PROPERTY stencilor_exported_headers ${headers})
    if(NOT STENCILOR_INSTALL)
        return()
    endif()
    target_include_directories(${target} PUBLIC "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>")
    if(NOT WIN32)
        set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN")
    endif()
    install(
        TARGETS ${target}
        EXPORT ${package}${library_COMPONENT}Targets
        RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT ${library_RUNTIME}
        LIBRARY
            DESTINATION "${CMAKE_INSTALL_LIBDIR}"
            COMPONENT ${library_RUNTIME}
            NAMELINK_COMPONENT development
        ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development
    )
    install(
        FILES ${headers}
        DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/${folder}"
        COMPONENT development
    )
    install(
        EXPORT ${package}${library_COMPONENT}Targets
        NAMESPACE ${package}::
        DESTINATION "${CMAKE_INSTALL_LIBDIR}/cmake/${package}"
        COMPONENT development
    )
endfunction()

# stencilor_install_package(PACKAGE [FILES...])
#
# Installs what find_package(PACKAGE) finds, generated from cmake/package/<PACKAGE>Config.cmake.in,
# with additional files.
function(stencilor_install_package package)
    if(NOT STENCILOR_INSTALL)
        return()
    endif()
    set(destination "${CMAKE_INSTALL_LIBDIR}/cmake/${package}")
    configure_package_config_file(
        "${PROJECT_SOURCE_DIR}/cmake/package/${package}Config.cmake.in"
        "${PROJECT_BINARY_DIR}/package/${package}Config.cmake"
        INSTALL_DESTINATION "${destination}"
        NO_SET_AND_CHECK_MACRO
    )
    write_basic_package_version_file(
        "${PROJECT_BINARY_DIR}/package/${package}ConfigVersion.cmake"
        COMPATIBILITY SameMinorVersion
    )
    install(
        FILES
            "${PROJECT_BINARY_DIR}/package/${package}Config.cmake"
            "${PROJECT_BINARY_DIR}/package/${package}ConfigVersion.cmake"
            ${ARGN}
        DESTINATION "${destination}"
        COMPONENT development
    )
endfunction()

# stencilor_install_pkg_config(TARGET DESCRIPTION [REQUIRES MODULE...] [PRIVATE LIBRARIES])
#
# Installs what `pkg-config` finds under the name of the target. PRIVATE is what a static library
# needs.
function(stencilor_install_pkg_config target description)
    cmake_parse_arguments(PARSE_ARGV 2 module "" "PRIVATE" "REQUIRES")
    if(NOT STENCILOR_INSTALL)
        return()
    endif()
    get_target_property(library ${target} OUTPUT_NAME)
    get_target_property(definitions ${target} INTERFACE_COMPILE_DEFINITIONS)
    set(flags "")
    if(definitions)
        list(TRANSFORM definitions PREPEND " -D")
        list(JOIN definitions "" flags)
    endif()
    set(private_libraries "")
    if(NOT STENCILOR_SHARED)
        set(private_libraries "${CMAKE_THREAD_LIBS_INIT} ${module_PRIVATE}")
    endif()
    set(destination "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
    file(RELATIVE_PATH up "/${destination}" "/")
    string(REGEX REPLACE "/$" "" up "${up}")
    list(JOIN module_REQUIRES ", " requires)
    string(REPLACE "_" "-" name "${target}")
    configure_file(
        "${PROJECT_SOURCE_DIR}/cmake/package/module.pc.in"
        "${PROJECT_BINARY_DIR}/package/${name}.pc"
        @ONLY
    )
    install(
        FILES "${PROJECT_BINARY_DIR}/package/${name}.pc"
        DESTINATION "${destination}"
        COMPONENT development
    )
endfunction()

function(stencilor_install_program target)
    if(NOT STENCILOR_INSTALL)
        return()
    endif()
    if(NOT WIN32)
        file(RELATIVE_PATH libraries "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
        set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries}")
    endif()
    install(TARGETS ${target} RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT program)
endfunction()
