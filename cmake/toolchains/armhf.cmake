# 32-bit ARM (Debian armhf): cmake --toolchain cmake/toolchains/armhf.cmake
set(Z2D_CROSS_TRIPLE arm-linux-gnueabihf)
set(Z2D_CROSS_PROCESSOR arm)
set(Z2D_CROSS_DEBIAN_ARCH armhf)
set(Z2D_CROSS_QEMU qemu-arm)
include(${CMAKE_CURRENT_LIST_DIR}/linux-cross.cmake)
