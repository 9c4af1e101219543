# Where modules for DirectFB are built and installed, and the internal headers they are written for.
include_guard()

# DirectFB loads modules from one directory. Ours holds our system and graphics driver beside
# DirectFB's own window manager and interfaces; without its input and graphics drivers nothing
# touches a device.
pkg_get_variable(DIRECTFB_MODULE_DIR directfb-internal moduledir)
if(NOT DIRECTFB_MODULE_DIR)
    message(FATAL_ERROR "pkg-config knows no directfb-internal: install libdirectfb-dev")
endif()
pkg_check_modules(DIRECTFB_INTERNAL REQUIRED IMPORTED_TARGET directfb-internal)

set(KESTRIN_MODULE_DIR ${PROJECT_BINARY_DIR}/directfb-modules)
set(KESTRIN_INSTALLED_MODULE_DIR ${CMAKE_INSTALL_LIBDIR}/kestrin/directfb-modules)
file(MAKE_DIRECTORY ${KESTRIN_MODULE_DIR})
foreach(part wm interfaces)
    file(CREATE_LINK ${DIRECTFB_MODULE_DIR}/${part} ${KESTRIN_MODULE_DIR}/${part} SYMBOLIC)
    install(FILES ${KESTRIN_MODULE_DIR}/${part} DESTINATION ${KESTRIN_INSTALLED_MODULE_DIR})
endforeach()
