#!/bin/sh
# Runs fuzz targets on their committed corpora.
#   fuzz/run.sh BUILD_DIR SECONDS [TARGET...]   (default: every target)
# New inputs go to BUILD_DIR/corpus-work/TARGET (the committed corpus is only
# read); crashes to BUILD_DIR/artifacts/TARGET/. Exits non-zero when a target
# finds a fault. One summary line per target: executions, coverage, time.
set -e
cd "$(dirname "$0")/.."
BUILD=${1:?build directory}
SECONDS_EACH=${2:-20}
if [ $# -ge 2 ]; then shift 2; else shift $#; fi
TARGETS="$*"
if [ -z "$TARGETS" ]; then
  for f in fuzz/fuzz_*.cpp; do TARGETS="$TARGETS $(basename "$f" .cpp | sed 's/^fuzz_//')"; done
fi
export ASAN_OPTIONS="${ASAN_OPTIONS:-halt_on_error=1:detect_leaks=1:allocator_may_return_null=1}"
export LSAN_OPTIONS="${LSAN_OPTIONS:-suppressions=$(pwd)/tests/lsan.supp:print_suppressions=0}"
export UBSAN_OPTIONS="${UBSAN_OPTIONS:-halt_on_error=1:print_stacktrace=1}"
export ZEPHRIN2D_DEBUG_LEVEL=0
# The GL driver stays loaded to the end, so that what it holds is not taken for a leak.
GL_DRIVER=$(ls /usr/lib/*/dri/swrast_dri.so 2>/dev/null | head -1)
failed=""
for t in $TARGETS; do
  exe="$BUILD/fuzz_$t"
  [ -x "$exe" ] || { echo "fuzz: no target $exe" >&2; exit 2; }
  work="$BUILD/corpus-work/$t"
  artifacts="$BUILD/artifacts/$t/"
  mkdir -p "$work" "$artifacts"
  dict=""
  [ -e "fuzz/dict/$t.dict" ] && dict="-dict=fuzz/dict/$t.dict"
  log="$BUILD/fuzz-$t.log"
  start=$(date +%s)
  if env ${GL_DRIVER:+LD_PRELOAD="$GL_DRIVER"} "$exe" -max_total_time="$SECONDS_EACH" -timeout=30 -rss_limit_mb=4096 -max_len=65536 \
      -print_final_stats=1 -artifact_prefix="$artifacts" $dict "$work" "fuzz/corpus/$t" >"$log" 2>&1; then
    status=ok
  else
    status=FAILED
    failed="$failed $t"
  fi
  end=$(date +%s)
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
  cov=$(grep -o 'cov: [0-9]*' "$log" | tail -1 | sed 's/cov: //')
  ft=$(grep -o 'ft: [0-9]*' "$log" | tail -1 | sed 's/ft: //')
  printf 'fuzz %-14s %-6s %8s execs  cov %6s  ft %6s  %4ss\n' "$t" "$status" "${runs:-?}" "${cov:-?}" "${ft:-?}" "$((end - start))"
  if [ "$status" = FAILED ]; then
    grep -E 'ERROR|SUMMARY|runtime error|Test unit written' "$log" | head -20 >&2 || true
  fi
done
[ -z "$failed" ] || { echo "fuzz: faults found in:$failed (see $BUILD/fuzz-*.log)" >&2; exit 1; }
