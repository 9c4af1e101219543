# What Debian's cross compilers have in common. Included by the toolchain file of an architecture,
# which sets CMAKE_SYSTEM_PROCESSOR, KESTRIN_COMPILER (the prefix of the compiler's name),
# KESTRIN_MULTIARCH (Debian's name of the library directory) and KESTRIN_SYSROOT.
#
# scripts/port fills the directory KESTRIN_SYSROOT. A vendor's toolchain differs in little more
# than these names: its compiler, its sysroot, and where the sysroot's pkg-config files are.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_CXX_COMPILER ${KESTRIN_COMPILER}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${KESTRIN_MULTIARCH})

set(CMAKE_SYSROOT ${KESTRIN_SYSROOT})
set(CMAKE_FIND_ROOT_PATH ${KESTRIN_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
foreach(kind LIBRARY INCLUDE PACKAGE)
    set(CMAKE_FIND_ROOT_PATH_MODE_${kind} ONLY)
endforeach()

# pkg-config then answers with the sysroot's packages and the paths they have on this machine.
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${KESTRIN_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR}
    ${KESTRIN_SYSROOT}/usr/lib/${KESTRIN_MULTIARCH}/pkgconfig:${KESTRIN_SYSROOT}/usr/share/pkgconfig)
