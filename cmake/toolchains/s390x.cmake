# A big-endian processor. Programs run here by QEMU.
set(CMAKE_SYSTEM_PROCESSOR s390x)
set(KESTRIN_COMPILER s390x-linux-gnu)
set(KESTRIN_MULTIARCH s390x-linux-gnu)
get_filename_component(KESTRIN_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../../build/sysroot/s390x ABSOLUTE)
include(${CMAKE_CURRENT_LIST_DIR}/debian.cmake)

# Without the instruction that converts UTF-8, which QEMU 7.2 has refuse U+0800 to U+0FFF.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-s390x -cpu max,etf3eh=off -L ${KESTRIN_SYSROOT})
