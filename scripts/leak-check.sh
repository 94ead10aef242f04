#!/bin/sh
# Runs the tools and test programs of a build under valgrind memcheck: no
# definite leak and no memory error may be reported, also after
# CGraphics2D::cleanup() (every program here ends with it).
#   scripts/leak-check.sh BUILD_DIR
# LEAK_TEST_FILTER selects the library tests (gtest filter; default: a set
# that loads and draws every kind of content, as each test makes its own
# GL context and that is slow under valgrind).
set -e
cd "$(dirname "$0")/.."
BUILD=${1:?build directory}
FILTER=${LEAK_TEST_FILTER:-"FuzzRegression.*:SceneLoaderJsonTest.*:SceneLoaderDsetTest.*:DemoSceneTest.*:Graphics2DLifecycle.*:TextTest.*:PointsTest.*"}
export LP_NUM_THREADS=0 ZEPHRIN2D_DEBUG_LEVEL=1
# The GL driver stays loaded to the end (see docs/reliability.md).
GL_DRIVER=$(ls /usr/lib/*/dri/swrast_dri.so 2>/dev/null | head -1)
VG="valgrind --error-exitcode=99 --leak-check=full --show-leak-kinds=definite --errors-for-leak-kinds=definite
  --keep-debuginfo=yes --num-callers=40 --suppressions=$(pwd)/tests/valgrind.supp"
out="$BUILD/leak-check"
mkdir -p "$out"
failed=""
run() {
  name=$1; shift
  start=$(date +%s)
  if env LD_PRELOAD="$GL_DRIVER" $VG --log-file="$out/$name.log" "$@" >"$out/$name.out" 2>&1; then status=ok; else status=FAILED; failed="$failed $name"; fi
  lost=$(sed -n 's/.*definitely lost: \([0-9,]*\) bytes.*/\1/p' "$out/$name.log" | tail -1)
  errors=$(sed -n 's/.*ERROR SUMMARY: \([0-9]*\) errors.*/\1/p' "$out/$name.log" | tail -1)
  printf 'leak-check %-16s %-6s definitely lost %6s bytes, %s errors, %4ss\n' "$name" "$status" "${lost:-0}" "${errors:-?}" "$(($(date +%s) - start))"
}
R="$BUILD/tools/zephrin2d-render/zephrin2d-render"
run render-sprites "$R" --demo sprites --frames 5 --size 32x32
run render-actors "$R" --demo actors --frames 30 --size 32x32
run render-shapes "$R" --demo shapes --frames 3 --size 32x32
run soak "$BUILD/tools/zephrin2d-soak/zephrin2d-soak" --frames 300 --size 32x32
[ -x "$BUILD/examples/demo/zephrin2d-demo" ] && run demo "$BUILD/examples/demo/zephrin2d-demo" examples/demo/ 10 "$out/demo.png"
run platform-tests "$BUILD/tests/PlatformTests"
run library-tests "$BUILD/tests/Zephrin2DTests" --gtest_filter="$FILTER"
[ -z "$failed" ] || { echo "leak-check: reports in:$failed (see $out/*.log)" >&2; exit 1; }
