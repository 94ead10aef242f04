#!/bin/sh
# Installs the build tree into a scratch prefix, moves the installed tree, and
# checks that it works from its new place with no LD_LIBRARY_PATH: every tool's
# --help, examples/minimal built with pkg-config (linked --as-needed, only a
# run path to lib/) and with find_package, and the art found beside the library.
# Usage: install_test.sh BUILD_DIR SOURCE_DIR WORK_DIR [TOOLCHAIN_FILE EMULATOR...]
# A cross build passes its toolchain file and emulator: the programs run
# through it, and pkg-config (which would move the installed tree into the
# sysroot) is left out.
set -eu
build=$1
source=$2
work=$3
toolchain=${4:-}
shift $(($# < 4 ? $# : 4))
unset LD_LIBRARY_PATH

fail() { echo "install test: $*" >&2; exit 1; }

rm -rf "$work"
mkdir -p "$work"
cmake --install "$build" --prefix "$work/installed" > "$work/install.log" ||
    fail "cmake --install failed, see $work/install.log"
mv "$work/installed" "$work/moved"
prefix=$work/moved

# GNUInstallDirs may have chosen lib or lib/<multiarch>: the .pc file tells.
pc=$(find "$prefix" -name zephrin2d.pc | head -n 1)
[ -n "$pc" ] || fail "no zephrin2d.pc under $prefix"
libdir=$(dirname "$(dirname "$pc")")
export PKG_CONFIG_PATH="$libdir/pkgconfig"
[ -f "$prefix/include/Zephrin2D/Zephrin2D.h" ] || fail "headers missing in $prefix/include/Zephrin2D"
for kind in scene actor sheet costume; do
    [ -f "$prefix/share/zephrin2d/schemas/$kind.schema.json" ] || fail "$kind.schema.json missing in $prefix/share/zephrin2d/schemas"
done

tools=0
for tool in "$prefix"/bin/*; do
    echo "== $tool --help"
    "$@" "$tool" --help > "$work/help.txt" 2>&1 || { cat "$work/help.txt" >&2; fail "$tool --help exited with an error"; }
    tools=$((tools + 1))
done
[ "$tools" -gt 0 ] || fail "no tools installed in $prefix/bin"

# The installed render tool draws its demos from the installed example content, not the source tree.
echo "== zephrin2d-render --demo meadow"
ZEPHRIN2D_DEBUG_LEVEL=3 "$@" "$prefix/bin/zephrin2d-render" --demo meadow --out "$work/meadow.png" > "$work/meadow.log" 2>&1 ||
    { cat "$work/meadow.log" >&2; fail "zephrin2d-render --demo meadow failed"; }
grep -q "$source/examples" "$work/meadow.log" && fail "the installed zephrin2d-render read $source/examples"
grep -q "$prefix/bin/../share/zephrin2d/examples" "$work/meadow.log" || fail "meadow: the installed content was not read"

if [ -z "$toolchain" ]; then
# --as-needed drops the platform library from the program: the main library
# must find it through its own run path. New dtags make the program's run path
# apply to its own dependencies only, as most distributions' linkers do.
echo "== pkg-config, --as-needed"
mkdir -p "$work/pkg-config"
g++ -std=c++17 -o "$work/pkg-config/minimal" "$source/examples/minimal/main.cpp" \
    $(pkg-config --cflags --libs zephrin2d) -Wl,--as-needed -Wl,--enable-new-dtags -Wl,-rpath,"$libdir" ||
    fail "building examples/minimal with pkg-config failed"

# Only the public headers are installed, and none includes one that is not.
echo "== installed headers"
[ ! -e "$prefix/include/Zephrin2D/tEntryPool.h" ] || fail "implementation helper tEntryPool.h installed"
for h in "$prefix"/include/Zephrin2D/*.h; do echo "#include \"$(basename "$h")\""; done > "$work/headers.cpp"
g++ -std=c++17 -fsyntax-only "$work/headers.cpp" $(pkg-config --cflags zephrin2d) || fail "installed headers do not compile"
fi

echo "== find_package"
cmake -S "$source/examples/minimal" -B "$work/cmake" -DCMAKE_PREFIX_PATH="$prefix" \
    ${toolchain:+--toolchain "$toolchain" -DZephrin2D_DIR="$libdir/cmake/Zephrin2D"} \
    -DCMAKE_EXE_LINKER_FLAGS="-Wl,--as-needed -Wl,--enable-new-dtags" > "$work/cmake.log" ||
    fail "configuring with find_package failed, see $work/cmake.log"
cmake --build "$work/cmake" > "$work/cmake-build.log" || fail "building with find_package failed, see $work/cmake-build.log"

for program in "$work/pkg-config/minimal" "$work/cmake/minimal"; do
    [ -z "$toolchain" ] || [ "$program" != "$work/pkg-config/minimal" ] || continue
    echo "== $program"
    "$@" "$program" || fail "$program exited with $?"
done
[ -z "$toolchain" ] || exit 0

# The moved tree finds its art beside the library, not where it was installed.
echo "== art directory"
g++ -std=c++17 -o "$work/art_dir" "$source/tests/install/art_dir.cpp" \
    $(pkg-config --cflags --libs zephrin2d) -Wl,-rpath,"$libdir" || fail "building art_dir failed"
found=$("$work/art_dir") || fail "art_dir exited with $?"
[ "$(realpath "$found")" = "$(realpath "$prefix/share/zephrin2d/art")" ] ||
    fail "the moved tree's art was looked for in $found"
