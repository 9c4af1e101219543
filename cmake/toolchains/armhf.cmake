# 32-bit ARM with NEON, as the processors of set-top boxes are. Programs run here by QEMU.
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(KESTRIN_COMPILER arm-linux-gnueabihf)
set(KESTRIN_MULTIARCH arm-linux-gnueabihf)
get_filename_component(KESTRIN_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../../build/sysroot/armhf ABSOLUTE)
include(${CMAKE_CURRENT_LIST_DIR}/debian.cmake)

# At -O1, and there alone, version 12.2 of the compiler loses the upper halves of constants that one of
# two ways of a condition gives (its if-conversion drops a MOVT). So the preset has -O2.

# The compiler would tell at length that version 7 changed how some arguments are passed.
set(CMAKE_CXX_FLAGS_INIT "-mfpu=neon -Wno-psabi")
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm -L ${KESTRIN_SYSROOT})
