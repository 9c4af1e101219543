# Installs the libraries, their headers, and what finds them: a CMake package and pkg-config files.
include(CMakePackageConfigHelpers)

set(KESTRIN_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/kestrin)

install(TARGETS kestrin kestrin_toolkit EXPORT kestrinTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ ${PROJECT_SOURCE_DIR}/toolkit/include/
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kestrin FILES_MATCHING PATTERN "*.h")
install(EXPORT kestrinTargets NAMESPACE kestrin:: DESTINATION ${KESTRIN_PACKAGE_DIR})

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/kestrinConfig.cmake.in kestrinConfig.cmake
    INSTALL_DESTINATION ${KESTRIN_PACKAGE_DIR})
write_basic_package_version_file(kestrinConfigVersion.cmake COMPATIBILITY SameMinorVersion)
# The file finds its prefix from where it lies, so that an installed tree can be moved.
file(RELATIVE_PATH KESTRIN_PREFIX_FROM_PC /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(${CMAKE_CURRENT_LIST_DIR}/kestrin.pc.in kestrin.pc @ONLY)
configure_file(${CMAKE_CURRENT_LIST_DIR}/kestrin-toolkit.pc.in kestrin-toolkit.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kestrinConfig.cmake
    ${PROJECT_BINARY_DIR}/kestrinConfigVersion.cmake DESTINATION ${KESTRIN_PACKAGE_DIR})
install(FILES ${PROJECT_BINARY_DIR}/kestrin.pc ${PROJECT_BINARY_DIR}/kestrin-toolkit.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
