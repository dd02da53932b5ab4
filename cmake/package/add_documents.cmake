# Run by cpack on the installed files of a package before they are packed: adds the licenses, and
# the documents that each Debian package must have.

function(stencilor_run)
    execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# The modification time of files in a reproducible package, or the current time.
function(stencilor_package_date result)
    string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC) # uses SOURCE_DATE_EPOCH
    set(${result} "${date}" PARENT_SCOPE)
endfunction()

# One file with all licenses. The Boost license need not be distributed with compiled code.
function(stencilor_write_copyright licences file)
    file(READ "${licences}/Stencilor.txt" text)
    string(APPEND text "\nIt contains the following libraries, compiled in.\n")
    foreach(name IN ITEMS CLI11 nlohmann-json)
        file(READ "${licences}/${name}.txt" licence)
        string(APPEND text "\n---- ${name} ----\n\n${licence}")
    endforeach()
    file(WRITE "${file}" "${text}")
endfunction()

function(stencilor_write_debian_changelog file)
    stencilor_package_date(date)
    set(version "${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}")
    file(
        WRITE "${file}"
        "stencilor (${version}) unstable; urgency=medium\n\n"
        "  * See changelog.gz for the changes to the program and the libraries.\n\n"
        " -- ${CPACK_PACKAGE_CONTACT}  ${date}\n"
    )
endfunction()

# The documentation folder of a Debian package.
function(stencilor_add_debian_documents component licences)
    string(TOUPPER "${component}" name)
    set(name "${CPACK_DEBIAN_${name}_PACKAGE_NAME}")
    set(folder "${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/share/doc/${name}")
    stencilor_write_copyright("${licences}" "${folder}/copyright")
    stencilor_write_debian_changelog("${folder}/changelog.Debian")
    configure_file("${CPACK_STENCILOR_SOURCE}/CHANGELOG.md" "${folder}/changelog" COPYONLY)
    file(GLOB_RECURSE pages "${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/share/man/*")
    stencilor_run(gzip -n9 "${folder}/changelog.Debian" "${folder}/changelog" ${pages})
    stencilor_run(chmod -R u=rwX,go=rX "${CPACK_TEMPORARY_DIRECTORY}/${component}")
endfunction()

function(stencilor_add_documents)
    set(collect "${CPACK_STENCILOR_SOURCE}/scripts/collect-licences" "${CPACK_STENCILOR_HEADERS}")
    if(NOT CPACK_GENERATOR STREQUAL "DEB")
        stencilor_run(${collect} "${CPACK_TEMPORARY_DIRECTORY}/licences")
        configure_file(
            "${CPACK_STENCILOR_SOURCE}/cmake/package/README.md.in"
            "${CPACK_TEMPORARY_DIRECTORY}/README.md"
            @ONLY
        )
        return()
    endif()
    set(licences "${CPACK_TOPLEVEL_DIRECTORY}/licences")
    stencilor_run(${collect} "${licences}")
    foreach(component IN LISTS CPACK_COMPONENTS_ALL)
        stencilor_add_debian_documents(${component} "${licences}")
    endforeach()
endfunction()

stencilor_add_documents()
