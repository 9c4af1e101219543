# What is installed and how its parts find each other. Every part belongs to a component, of which
# cmake/KestrinPackages.cmake makes a package:
#
#     debug, library, toolkit    the shared libraries
#     development                headers, links for the linker, CMake package, pkg-config files
#     display, graphics          modules for DirectFB
#     tools                      programs
#     licences                   in no package: each has a file of its own
include_guard()
include(CMakePackageConfigHelpers)

set(KESTRIN_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/kestrin)
set(KESTRIN_HEADER_DIR ${CMAKE_INSTALL_INCLUDEDIR}/kestrin)

# In a prefix of their own, programs and libraries find the libraries from where they are, and so
# does the linker what a library needs. Where the system looks itself they carry no path.
if(NOT CMAKE_INSTALL_FULL_LIBDIR IN_LIST CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES)
    file(RELATIVE_PATH path ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    set(KESTRIN_PROGRAM_RPATH $ORIGIN/${path})
    set(KESTRIN_LIBRARY_RPATH $ORIGIN)
endif()

# The soname is the major version, the file's name the whole version: a program runs with every
# later library of the major version it was linked to, so the major version is raised when a
# function goes, a virtual function moves or a public class changes its size, and only then.
# `scripts/check abi` compares with the last release.
function(kestrin_install_library target component)
    set_target_properties(${target} PROPERTIES
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR}
        INSTALL_RPATH "${KESTRIN_LIBRARY_RPATH}")
    target_include_directories(${target} INTERFACE $<INSTALL_INTERFACE:${KESTRIN_HEADER_DIR}>)
    install(TARGETS ${target} EXPORT kestrinTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
            COMPONENT ${component} NAMELINK_COMPONENT development)
endfunction()

function(kestrin_install_programs)
    set_target_properties(${ARGN} PROPERTIES INSTALL_RPATH "${KESTRIN_PROGRAM_RPATH}")
    install(TARGETS ${ARGN} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
endfunction()

set(headers ${PROJECT_SOURCE_DIR}/include/)
set(pkg_config_names kestrin)
if(NOT KESTRIN_ENGINE_ONLY)
    list(APPEND headers ${PROJECT_SOURCE_DIR}/toolkit/include/)
    list(APPEND pkg_config_names kestrin-toolkit)
endif()
install(DIRECTORY ${headers}
    DESTINATION ${KESTRIN_HEADER_DIR} COMPONENT development FILES_MATCHING PATTERN "*.h")
install(EXPORT kestrinTargets NAMESPACE kestrin::
    DESTINATION ${KESTRIN_PACKAGE_DIR} COMPONENT development)

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/kestrinConfig.cmake.in kestrinConfig.cmake
    INSTALL_DESTINATION ${KESTRIN_PACKAGE_DIR} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(kestrinConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(
    FILES
        ${PROJECT_BINARY_DIR}/kestrinConfig.cmake
        ${PROJECT_BINARY_DIR}/kestrinConfigVersion.cmake
    DESTINATION ${KESTRIN_PACKAGE_DIR} COMPONENT development)

# The file finds its prefix from where it lies, so that an installed tree can be moved.
file(RELATIVE_PATH KESTRIN_PREFIX_FROM_PC /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
foreach(name ${pkg_config_names})
    configure_file(${CMAKE_CURRENT_LIST_DIR}/${name}.pc.in ${name}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${name}.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endforeach()

install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/LICENSE-tools
    DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT licences)
