# Run by cpack over what goes into the Debian packages: puts in what Debian asks of a package, and compresses pages.
if(NOT CPACK_GENERATOR STREQUAL DEB)
    return()
endif()

function(compress)
    execute_process(COMMAND gzip -9 -n -f ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

execute_process(COMMAND date -u -R -d ${CPACK_ZEB_VERSION_DATE} OUTPUT_VARIABLE date OUTPUT_STRIP_TRAILING_WHITESPACE
    COMMAND_ERROR_IS_FATAL ANY)

foreach(component COMMANDS DEVELOPMENT)
    set(package ${CPACK_DEBIAN_${component}_PACKAGE_NAME})
    string(TOLOWER ${component} directory)
    set(share ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${directory}/usr/share)
    set(doc ${share}/doc/${package})

    file(MAKE_DIRECTORY ${doc})
    file(REMOVE ${doc}/LICENSE)
    if(EXISTS ${doc}/CHANGELOG.md)
        file(RENAME ${doc}/CHANGELOG.md ${doc}/changelog)
        compress(${doc}/changelog)
    endif()
    file(WRITE ${doc}/copyright
"Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/

Files: *
Copyright: 2026 ${CPACK_PACKAGE_VENDOR}
License: Apache-2.0
 On Debian systems the full text of the licence is in
 /usr/share/common-licenses/Apache-2.0.
")
    file(WRITE ${doc}/changelog.Debian
"zeb-profiler (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium

  * Version ${CPACK_PACKAGE_VERSION}.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")
    compress(${doc}/changelog.Debian)
    file(GLOB pages ${share}/man/man1/*.1)
    if(pages)
        compress(${pages})
    endif()
    file(GLOB_RECURSE files LIST_DIRECTORIES false ${share}/doc/* ${share}/man/*)
    file(CHMOD ${files} PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
    file(CHMOD ${share}/doc ${doc} PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ
        WORLD_EXECUTE)
endforeach()
