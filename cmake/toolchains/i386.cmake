# 32-bit x86, whose programs run here as they are. They find the sysroot's libraries, and so do the
# programs and modules that they start, by paths that are built in.
set(CMAKE_SYSTEM_PROCESSOR i686)
set(KESTRIN_COMPILER i686-linux-gnu)
set(KESTRIN_MULTIARCH i386-linux-gnu)
get_filename_component(KESTRIN_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../../build/sysroot/i386 ABSOLUTE)
include(${CMAKE_CURRENT_LIST_DIR}/debian.cmake)

set(CMAKE_EXE_LINKER_FLAGS_INIT -Wl,--dynamic-linker=${KESTRIN_SYSROOT}/lib/ld-linux.so.2)
# Paths of the old kind hold for libraries of libraries, too.
foreach(kind EXE SHARED MODULE)
    string(APPEND CMAKE_${kind}_LINKER_FLAGS_INIT " -Wl,--disable-new-dtags")
endforeach()
set(CMAKE_BUILD_RPATH
    ${KESTRIN_SYSROOT}/lib/${KESTRIN_MULTIARCH} ${KESTRIN_SYSROOT}/usr/lib/${KESTRIN_MULTIARCH})
