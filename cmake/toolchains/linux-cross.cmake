# Shared by the ARM toolchain files: Debian's cross compilers, a sysroot made
# by scripts/make-sysroot.sh, and qemu-user to run what was built.
# Expects Z2D_CROSS_TRIPLE, Z2D_CROSS_PROCESSOR, Z2D_CROSS_DEBIAN_ARCH and Z2D_CROSS_QEMU.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${Z2D_CROSS_PROCESSOR})

get_filename_component(z2d_source_dir "${CMAKE_CURRENT_LIST_DIR}/../.." ABSOLUTE)
set(ZEPHRIN2D_SYSROOT "${z2d_source_dir}/build-sysroot-${Z2D_CROSS_DEBIAN_ARCH}" CACHE PATH
  "Sysroot of the target (scripts/make-sysroot.sh ${Z2D_CROSS_DEBIAN_ARCH})")
if(NOT EXISTS "${ZEPHRIN2D_SYSROOT}/usr/lib/${Z2D_CROSS_TRIPLE}")
  message(FATAL_ERROR "No ${Z2D_CROSS_DEBIAN_ARCH} sysroot at ${ZEPHRIN2D_SYSROOT}: run scripts/make-sysroot.sh ${Z2D_CROSS_DEBIAN_ARCH}")
endif()
set(CMAKE_SYSROOT "${ZEPHRIN2D_SYSROOT}")

set(CMAKE_C_COMPILER ${Z2D_CROSS_TRIPLE}-gcc)
set(CMAKE_CXX_COMPILER ${Z2D_CROSS_TRIPLE}-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR ${Z2D_CROSS_QEMU} -L ${ZEPHRIN2D_SYSROOT} CACHE STRING
  "Runs target programs on the build machine")

set(CMAKE_FIND_ROOT_PATH "${ZEPHRIN2D_SYSROOT}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(ENV{PKG_CONFIG_SYSROOT_DIR} "${ZEPHRIN2D_SYSROOT}")
set(ENV{PKG_CONFIG_LIBDIR}
  "${ZEPHRIN2D_SYSROOT}/usr/lib/${Z2D_CROSS_TRIPLE}/pkgconfig:${ZEPHRIN2D_SYSROOT}/usr/share/pkgconfig")
set(ENV{PKG_CONFIG_PATH} "")
