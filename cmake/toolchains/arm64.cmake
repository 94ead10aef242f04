# 64-bit ARM (Debian arm64): cmake --toolchain cmake/toolchains/arm64.cmake
set(Z2D_CROSS_TRIPLE aarch64-linux-gnu)
set(Z2D_CROSS_PROCESSOR aarch64)
set(Z2D_CROSS_DEBIAN_ARCH arm64)
set(Z2D_CROSS_QEMU qemu-aarch64)
include(${CMAKE_CURRENT_LIST_DIR}/linux-cross.cmake)
