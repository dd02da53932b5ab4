# Functions for builds with templates. They use the command in the variable STENCILOR, or the
# program built in the same project.

function(stencilor_find_command result)
    if(STENCILOR)
        set(command ${STENCILOR})
    elseif(TARGET stencilor_program)
        set(command "$<TARGET_FILE:stencilor_program>")
    else()
        message(FATAL_ERROR "The program is missing: set STENCILOR to its path.")
    endif()
    set(${result} "${command}" PARENT_SCOPE)
endfunction()

# stencilor_read_call(FUNCTION VALUES LISTS REQUIRED ARGUMENTS...): sets stencilor_NAME for each.
macro(stencilor_read_call function values lists required)
    cmake_parse_arguments(stencilor "" "${values}" "${lists}" ${ARGN})
    if(stencilor_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "${function}: unexpected arguments: ${stencilor_UNPARSED_ARGUMENTS}")
    endif()
    foreach(name IN ITEMS ${required})
        if(NOT stencilor_${name})
            message(FATAL_ERROR "${function}: missing ${name}")
        endif()
    endforeach()
    foreach(name IN ITEMS TEMPLATE TEMPLATES CONTEXT ROOT)
        set(paths "")
        foreach(path IN LISTS stencilor_${name})
            cmake_path(ABSOLUTE_PATH path BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}" NORMALIZE)
            list(APPEND paths "${path}")
        endforeach()
        set(stencilor_${name} "${paths}")
    endforeach()
    set(stencilor_root "")
    if(stencilor_ROOT)
        set(stencilor_root --root "${stencilor_ROOT}")
    endif()
    stencilor_find_command(stencilor_command)
endmacro()

# stencilor_render(TARGET NAME TEMPLATE FILE [CONTEXT FILE] OUTPUT FILE [ROOT FOLDER] [OPTIONS OPTION...])
#
# Renders a template when the build runs, and again when it, an include or the context has changed.
# Gaps in the output are errors. The output becomes a source of the target NAME of this folder, or
# of a new target if there is none. OUTPUT is relative to the binary directory, the other files to
# the source directory. The options are those of `stencilor render`.
function(stencilor_render)
    stencilor_read_call(
        stencilor_render
        "TARGET;TEMPLATE;CONTEXT;OUTPUT;ROOT"
        "OPTIONS"
        "TARGET;TEMPLATE;OUTPUT"
        ${ARGN}
    )
    cmake_path(
        ABSOLUTE_PATH stencilor_OUTPUT
        BASE_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}"
        NORMALIZE
        OUTPUT_VARIABLE output
    )
    cmake_path(GET output PARENT_PATH folder)
    file(MAKE_DIRECTORY "${folder}")
    add_custom_command(
        OUTPUT "${output}"
        COMMAND
            ${stencilor_command} render --strict ${stencilor_root} ${stencilor_OPTIONS} -o
            "${output}" -- "${stencilor_TEMPLATE}" ${stencilor_CONTEXT}
        COMMAND
            ${stencilor_command} deps ${stencilor_root} --depfile "${output}" -o "${output}.d" --
            "${stencilor_TEMPLATE}"
        DEPENDS "${stencilor_TEMPLATE}" ${stencilor_CONTEXT}
        DEPFILE "${output}.d"
        COMMENT "Rendering ${stencilor_OUTPUT}"
        VERBATIM
    )
    if(TARGET "${stencilor_TARGET}")
        target_sources("${stencilor_TARGET}" PRIVATE "${output}")
    else()
        add_custom_target("${stencilor_TARGET}" ALL DEPENDS "${output}")
    endif()
endfunction()

# stencilor_check(NAME NAME TEMPLATES FILE... [CONTEXT FILE] [ROOT FOLDER] [OPTIONS OPTION...])
#
# Adds a test that fails if `stencilor check`, with these options, finds errors or warnings.
function(stencilor_check)
    stencilor_read_call(
        stencilor_check
        "NAME;CONTEXT;ROOT"
        "TEMPLATES;OPTIONS"
        "NAME;TEMPLATES"
        ${ARGN}
    )
    if(stencilor_CONTEXT)
        list(APPEND stencilor_OPTIONS --context "${stencilor_CONTEXT}")
    endif()
    add_test(
        NAME "${stencilor_NAME}"
        COMMAND
            ${stencilor_command} check ${stencilor_root} ${stencilor_OPTIONS} -- ${stencilor_TEMPLATES}
    )
endfunction()
