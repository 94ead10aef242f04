#!/bin/sh
# Installs the Debian packages Zephrin2D needs to build, test and run its tools.
# Idempotent: when everything is there it prints nothing and returns at once.
set -e
PACKAGES="build-essential cmake pkg-config git
  libgles-dev libegl-dev libegl-mesa0 libgl1-mesa-dri libx11-dev
  libpng-dev zlib1g-dev libboost-dev libglibmm-2.4-dev libjsoncpp-dev
  libfreetype-dev libfontconfig-dev fonts-dejavu-core
  googletest libgtest-dev libgmock-dev libbenchmark-dev
  xvfb xauth x11-utils x11-apps"
# The content schemas' test validates files with Debian's jsonschema.
PACKAGES="$PACKAGES python3-jsonschema"
# The mistakes-table test of zephrin2d-check reads its table with Python.
PACKAGES="$PACKAGES python3"
# stb_rect_pack.h, the rectangle packer behind zephrin2d-pack.
PACKAGES="$PACKAGES libstb-dev"
# The XML parser of zephrin2d-import (Tiled's .tmx and .tsx files).
PACKAGES="$PACKAGES libtinyxml2-dev"
# Tiled itself: the importer's tests export maps to JSON with it.
PACKAGES="$PACKAGES tiled"
# With --reliability also what the fuzz targets, the sanitizer runs and the
# leak check need (clang with libFuzzer and the sanitizer runtimes, valgrind).
RELIABILITY_PACKAGES="clang-14 libclang-rt-14-dev llvm-14 valgrind python3"
[ "$1" = "--reliability" ] && PACKAGES="$PACKAGES $RELIABILITY_PACKAGES"
# With --bench also the peer the benchmarks compare against (SDL2) and the report generator.
BENCH_PACKAGES="libsdl2-dev python3"
# callgrind counts the instructions of the benchmark frames (and its header marks them).
BENCH_PACKAGES="$BENCH_PACKAGES valgrind"
[ "$1" = "--bench" ] && PACKAGES="$PACKAGES $BENCH_PACKAGES"
# A real locale, for the test that animation labels survive one (generated below).
PACKAGES="$PACKAGES locales"
# make mutation is a python3 script.
PACKAGES="$PACKAGES python3"
# With --cross ARCH (armhf or arm64) also the cross compilers, qemu-user to
# run what they build, and mmdebstrap for the target's sysroot.
[ "$1" = "--cross" ] && PACKAGES="$PACKAGES qemu-user mmdebstrap crossbuild-essential-${2:-armhf}"
# With --coverage also gcovr, for the line and branch coverage report.
[ "$1" = "--coverage" ] && PACKAGES="$PACKAGES gcovr"
missing=""
for p in $PACKAGES; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing="$missing $p"
  fi
done
SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
if [ -n "$missing" ]; then
  echo "install-deps: installing$missing"
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -qq
  $SUDO apt-get install -y -qq --no-install-recommends $missing >/dev/null
fi
if ! locale -a 2>/dev/null | grep -qix 'en_US.utf-\{0,1\}8'; then
  echo "install-deps: generating the en_US.UTF-8 locale"
  $SUDO localedef -i en_US -c -f UTF-8 en_US.UTF-8
fi
