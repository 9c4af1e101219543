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
endforeach()

# Installed, the links are relative where DirectFB is in the same prefix.
install(CODE "
    set(modules \"\${CMAKE_INSTALL_PREFIX}/${KESTRIN_INSTALLED_MODULE_DIR}\")
    set(target \"${DIRECTFB_MODULE_DIR}\")
    cmake_path(IS_PREFIX CMAKE_INSTALL_PREFIX \"\${target}\" NORMALIZE same_prefix)
    if(same_prefix)
        file(RELATIVE_PATH target \"\${modules}\" \"\${target}\")
    endif()
    file(MAKE_DIRECTORY \"\$ENV{DESTDIR}\${modules}\")
    foreach(part wm interfaces)
        message(STATUS \"Installing: \$ENV{DESTDIR}\${modules}/\${part}\")
        file(CREATE_LINK \"\${target}/\${part}\" \"\$ENV{DESTDIR}\${modules}/\${part}\" SYMBOLIC)
    endforeach()" COMPONENT display)
