# Debian packages, by CPack: one for each component. scripts/package makes them.
if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    message(FATAL_ERROR "Debian packages are installed in /usr: set CMAKE_INSTALL_PREFIX to it")
endif()

set(KESTRIN_PACKAGE_MAINTAINER "The Kestrin developers <kestrin@localhost>"
    CACHE STRING "Who answers for the Debian packages")
set(release 1)
set(version ${PROJECT_VERSION}-${release})
set(soversion ${PROJECT_VERSION_MAJOR})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "${KESTRIN_PACKAGE_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_COMPONENTS_ALL debug library toolkit development display graphics tools)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_SET_DESTDIR ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE kestrin)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${release})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# Other packages' libraries are found by their packages; ours are named below.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

# The licence, and a changelog of one entry, which Debian wants in every package.
file(READ ${PROJECT_SOURCE_DIR}/LICENSE licence)
file(READ ${PROJECT_SOURCE_DIR}/LICENSE-tools licence_of_tools)
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC) # of SOURCE_DATE_EPOCH
set(documents ${PROJECT_BINARY_DIR}/package-documents)
file(WRITE ${documents}/changelog.Debian
    "kestrin (${version}) unstable; urgency=medium\n\n  * Version ${PROJECT_VERSION}.\n\n"
    " -- ${KESTRIN_PACKAGE_MAINTAINER}  ${date}\n")
execute_process(COMMAND gzip -9nf ${documents}/changelog.Debian COMMAND_ERROR_IS_FATAL ANY)

# kestrin_package(COMPONENT name section multiarch SUMMARY ... [DESCRIPTION ...] [DEPENDS ...]
#                 [RECOMMENDS ...] [LIBRARY name-in-soname])
function(kestrin_package component name section multiarch)
    cmake_parse_arguments(PARSE_ARGV 4 PACKAGE
        "" "SUMMARY;DESCRIPTION;DEPENDS;RECOMMENDS;LIBRARY" "")
    string(TOUPPER CPACK_DEBIAN_${component} prefix)
    set(${prefix}_PACKAGE_NAME ${name} PARENT_SCOPE)
    # CPack has no variable for the last field.
    set(${prefix}_PACKAGE_SECTION "${section}\nMulti-Arch: ${multiarch}" PARENT_SCOPE)
    set(${prefix}_DESCRIPTION "${PACKAGE_SUMMARY}\n${PACKAGE_DESCRIPTION}" PARENT_SCOPE)
    set(${prefix}_PACKAGE_DEPENDS "${PACKAGE_DEPENDS}" PARENT_SCOPE)
    set(${prefix}_PACKAGE_RECOMMENDS "${PACKAGE_RECOMMENDS}" PARENT_SCOPE)

    set(copyright "Kestrin is under the MIT licence:\n\n${licence}")
    if(component STREQUAL "tools")
        string(APPEND copyright "\n${licence_of_tools}")
    endif()
    file(WRITE ${documents}/${name}/copyright "${copyright}")
    install(FILES ${documents}/${name}/copyright ${documents}/changelog.Debian.gz
        DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${name}
        COMPONENT ${component} EXCLUDE_FROM_ALL)

    if(PACKAGE_LIBRARY)
        set(control ${documents}/${name})
        file(WRITE ${control}/shlibs
            "${PACKAGE_LIBRARY} ${soversion} ${name} (>= ${PROJECT_VERSION})\n")
        file(WRITE ${control}/triggers "activate-noawait ldconfig\n")
        # CPack writes scripts that call ldconfig where it is given none of these names. The trigger
        # does that, so it is given the names without the files.
        set(${prefix}_PACKAGE_CONTROL_EXTRA
            ${control}/shlibs ${control}/triggers ${control}/postinst ${control}/postrm PARENT_SCOPE)
    endif()
endfunction()

set(engine [[
Kestrin draws texts, pictures, rectangles and layers over the video of
television sets and set-top boxes, through DirectFB, and repaints only
what has changed.]])

kestrin_package(debug libkestrin-debug${soversion} libs same
    LIBRARY libkestrin-debug
    SUMMARY "on-screen-display engine for television sets - debug log"
    DESCRIPTION "${engine}

This package contains the log that the library writes its messages
through, where the platform does not bring one of its own.")
# Text is drawn by FreeType, but for the painter's DrawChar and DrawString: these load DirectFB's
# font module.
kestrin_package(library libkestrin${soversion} libs same
    LIBRARY libkestrin
    DEPENDS "libkestrin-debug${soversion} (>= ${PROJECT_VERSION}), libdirectfb-extra"
    SUMMARY "on-screen-display engine for television sets - library"
    DESCRIPTION "${engine}

This package contains the shared library.")
kestrin_package(toolkit libkestrin-toolkit${soversion} libs same
    LIBRARY libkestrin_toolkit
    DEPENDS "libkestrin${soversion} (>= ${PROJECT_VERSION})"
    SUMMARY "on-screen-display engine for television sets - toolkit"
    DESCRIPTION "${engine}

This package contains the companion library, which lays out text of all
scripts of television and loads pictures.")
kestrin_package(development libkestrin-dev libdevel same
    DEPENDS "libkestrin${soversion} (= ${version}), libkestrin-toolkit${soversion} (= ${version}), \
libkestrin-debug${soversion} (= ${version})"
    SUMMARY "on-screen-display engine for television sets - development files"
    DESCRIPTION "${engine}

This package contains what programs are built with: headers, CMake
package and pkg-config files of the library and the toolkit.")
kestrin_package(display kestrin-display libs same
    RECOMMENDS "kestrin-graphics"
    SUMMARY "display in a file for DirectFB"
    DESCRIPTION [[
A system module for DirectFB whose panel is a file, for programs that run
where there is no panel: on servers and in tests. It draws in memory and
touches no device.

kestrin-screen of the package kestrin-tools prints how a program is
started on it and turns what the program shows into pictures.]])
kestrin_package(graphics kestrin-graphics libs same
    DEPENDS "kestrin-display (= ${version})"
    SUMMARY "graphics driver for DirectFB's display in a file"
    DESCRIPTION [[
A graphics driver for DirectFB that fills and blends with the processor's
vector units, with the pixels of DirectFB's own renderer. Programs on the
display of the package kestrin-display use it when it is there.]])
kestrin_package(tools kestrin-tools utils foreign
    DEPENDS "kestrin-display (= ${version}), libkestrin-toolkit${soversion} (>= ${PROJECT_VERSION}), \
libkestrin${soversion} (>= ${PROJECT_VERSION})"
    RECOMMENDS "fonts-dejavu-core, kestrin-graphics"
    SUMMARY "tools of the Kestrin on-screen-display engine"
    DESCRIPTION "${engine}

This package contains a subtitle player, programs for image, palette and
resource index files, and one that takes pictures of the display in a
file.")

# The tools' manual pages are what they say of themselves, under a name in few words.
find_program(HELP2MAN help2man REQUIRED)
set(pages)
foreach(entry
        "kestrin-image:make, show and examine image files"
        "kestrin-index:examine resource index files"
        "kestrin-palette:make and show palette files"
        "kestrin-play:show subtitles on a display in a file"
        "kestrin-screen:take pictures of a display in a file"
        "kestrin-sheet:put pictures onto one sheet")
    string(REGEX MATCH "(.*):(.*)" matched ${entry})
    set(page ${documents}/man/${CMAKE_MATCH_1}.1)
    add_custom_command(OUTPUT ${page}.gz
        COMMAND ${HELP2MAN} --no-info --version-string=${PROJECT_VERSION} --name=${CMAKE_MATCH_2}
            --output=${page} $<TARGET_FILE:${CMAKE_MATCH_1}>
        COMMAND gzip -9nf ${page}
        DEPENDS ${CMAKE_MATCH_1} VERBATIM)
    list(APPEND pages ${page}.gz)
endforeach()
file(MAKE_DIRECTORY ${documents}/man)
add_custom_target(kestrin_manual_pages ALL DEPENDS ${pages})
install(FILES ${pages} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools EXCLUDE_FROM_ALL)

include(CPack)
