#!/bin/sh
# Installs the build tree into a scratch prefix, builds examples/minimal
# against it with pkg-config and with find_package, and runs both programs.
# Usage: install_test.sh BUILD_DIR SOURCE_DIR WORK_DIR
set -eu
build=$1
source=$2
work=$3
prefix=$work/prefix

fail() { echo "install test: $*" >&2; exit 1; }

rm -rf "$work"
mkdir -p "$work"
cmake --install "$build" --prefix "$prefix" > "$work/install.log" || fail "cmake --install failed, see $work/install.log"

# GNUInstallDirs may have chosen lib or lib/<multiarch>: the .pc file tells.
pc=$(find "$prefix" -name zephrin2d.pc | head -n 1)
[ -n "$pc" ] || fail "no zephrin2d.pc under $prefix"
libdir=$(dirname "$(dirname "$pc")")
[ -f "$prefix/include/Zephrin2D/Zephrin2D.h" ] || fail "headers missing in $prefix/include/Zephrin2D"
for kind in scene actor sheet costume; do
    [ -f "$prefix/share/zephrin2d/schemas/$kind.schema.json" ] || fail "$kind.schema.json missing in $prefix/share/zephrin2d/schemas"
done

echo "== pkg-config"
PKG_CONFIG_PATH=$libdir/pkgconfig make -s -C "$source/examples/minimal" OUT="$work/pkg-config"

echo "== find_package"
cmake -S "$source/examples/minimal" -B "$work/cmake" -DCMAKE_PREFIX_PATH="$prefix" > "$work/cmake.log" ||
    fail "configuring with find_package failed, see $work/cmake.log"
cmake --build "$work/cmake" > "$work/cmake-build.log" || fail "building with find_package failed, see $work/cmake-build.log"

for program in "$work/pkg-config/minimal" "$work/cmake/minimal"; do
    echo "== $program"
    LD_LIBRARY_PATH=$libdir "$program" || fail "$program exited with $?"
done

# A moved tree still finds its art beside the library, not where it was installed.
echo "== moved tree"
PKG_CONFIG_PATH=$libdir/pkgconfig c++ -std=c++17 -o "$work/art_dir" "$source/tests/install/art_dir.cpp" \
    $(PKG_CONFIG_PATH=$libdir/pkgconfig pkg-config --cflags --libs zephrin2d) || fail "building art_dir failed"
mv "$prefix" "$work/moved"
moved_libdir=$work/moved${libdir#"$prefix"}
found=$(LD_LIBRARY_PATH=$moved_libdir "$work/art_dir") || fail "art_dir exited with $?"
[ "$(realpath "$found")" = "$(realpath "$work/moved/share/zephrin2d/art")" ] ||
    fail "the moved tree's art was looked for in $found"
