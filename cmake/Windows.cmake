# Windows-only parts of programs and libraries. On other systems, these functions do nothing, so
# that callers need no conditions.

include_guard(GLOBAL)

if(WIN32)
    enable_language(RC)
endif()

set(stencilor_windows_templates "${CMAKE_CURRENT_LIST_DIR}/windows")

# Adds the version that the Explorer shows in the properties of a program or library.
function(stencilor_add_version_resource target description)
    get_target_property(type ${target} TYPE)
    if(NOT WIN32 OR type STREQUAL "STATIC_LIBRARY")
        return()
    endif()
    if(type STREQUAL "EXECUTABLE")
        set(VERSION_FILE_TYPE VFT_APP)
    else()
        set(VERSION_FILE_TYPE VFT_DLL)
    endif()
    set(VERSION_DESCRIPTION "${description}")
    set(VERSION_FILE_NAME "$<TARGET_FILE_NAME:${target}>")
    set(VERSION_INTERNAL_NAME "$<TARGET_FILE_BASE_NAME:${target}>")

    set(resource "${CMAKE_CURRENT_BINARY_DIR}/${target}-version.rc")
    configure_file("${stencilor_windows_templates}/version.rc.in" "${resource}.in" @ONLY)
    # In a second step, because the file's name is only known once all targets are.
    file(GENERATE OUTPUT "${resource}" INPUT "${resource}.in" TARGET ${target})
    target_sources(${target} PRIVATE "${resource}")
endfunction()

# Adds the manifest that enables UTF-8 arguments and paths of any length.
function(stencilor_add_manifest target)
    if(NOT WIN32)
        return()
    endif()
    set(resource "${CMAKE_CURRENT_BINARY_DIR}/${target}-manifest.rc")
    set(manifest "${stencilor_windows_templates}/program.manifest")
    file(CONFIGURE OUTPUT "${resource}" CONTENT "1 24 \"${manifest}\"\n" @ONLY)
    set_source_files_properties("${resource}" PROPERTIES OBJECT_DEPENDS "${manifest}")
    target_sources(${target} PRIVATE "${resource}")
endfunction()

# Installs the compiler's own DLLs with the programs, for machines without the compiler.
function(stencilor_install_compiler_runtime)
    if(MINGW_RUNTIME_DLLS)
        install(FILES ${MINGW_RUNTIME_DLLS} DESTINATION "${CMAKE_INSTALL_BINDIR}" ${ARGN})
    endif()
endfunction()
