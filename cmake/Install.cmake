# What `cmake --install` lays down: the libraries with their headers and CMake packages, and the
# program. Nothing that is installed names a folder of this machine, so the whole may be moved.

include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

# stencilor_install_library(TARGET PACKAGE FOLDER HEADERS...)
#
# The package gives the target in its own namespace; the headers are included as <FOLDER/HEADER>.
function(stencilor_install_library target package folder)
    list(TRANSFORM ARGN PREPEND "${PROJECT_SOURCE_DIR}/${folder}/" OUTPUT_VARIABLE headers)
    set_property(GLOBAL APPEND PROPERTY stencilor_exported_headers ${headers})
    if(NOT STENCILOR_INSTALL)
        return()
    endif()
    target_include_directories(${target} PUBLIC "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>")
    set(destination "${CMAKE_INSTALL_LIBDIR}/cmake/${package}")
    if(NOT WIN32)
        set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN")
    endif()
    install(
        TARGETS ${target}
        EXPORT ${package}Targets
        RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT runtime
        LIBRARY
            DESTINATION "${CMAKE_INSTALL_LIBDIR}"
            COMPONENT runtime
            NAMELINK_COMPONENT development
        ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development
    )
    install(
        FILES ${ARGN}
        DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/${folder}"
        COMPONENT development
    )
    install(
        EXPORT ${package}Targets
        NAMESPACE ${package}::
        DESTINATION "${destination}"
        COMPONENT development
    )
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
