#!/usr/bin/env bash
# Runs every test of the built trees N times (default 20) to find flaky ones
# before CI does, and prints per test: runs, failures, hangs. A hang is a run
# that hit its time limit (under Wine the watchdog prints its stacks first).
#   scripts/stress.sh [N] [regex of test names]
# Trees: $TAVRINE_STRESS_TREES (default "win64 linux"), those of them that are
# built (scripts/test.sh builds them). The log of each failed run is kept in
# <build>/stress/. Exit status 0 only when no run failed.
set -uo pipefail
cd "$(dirname "$0")/.."
ROOT=$(pwd)
RUNS=${1:-20}
FILTER=${2:-}
BUILD="$ROOT/${TAVRINE_BUILD_ROOT:-build}"
LOGS="$BUILD/stress"
mkdir -p "$LOGS"

export WINEPREFIX=${WINEPREFIX:-$BUILD/wine-prefix}
export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" WINEARCH=win64

if [[ ! -f $WINEPREFIX/system.reg ]] && [[ " ${TAVRINE_STRESS_TREES:-win64} " == *" win"* ]]; then
  mkdir -p "$WINEPREFIX"
  wineboot -i >/dev/null 2>&1
  wineserver -w
fi

bad=0
printf '%-8s %-36s %5s %9s %6s %9s\n' tree test runs failures hangs seconds
for tree in ${TAVRINE_STRESS_TREES:-win64 linux}; do
  dir="$BUILD/$tree"
  [[ -f $dir/CTestTestfile.cmake ]] || { echo "$tree: not built, skipped" >&2; continue; }
  mapfile -t tests < <(ctest --test-dir "$dir" -N ${FILTER:+-R "$FILTER"} |
                       sed -nE 's/^ *Test +#[0-9]+: +([^ ]+)$/\1/p')
  for test in "${tests[@]}"; do
    failures=0 hangs=0 start=$SECONDS
    for ((run = 1; run <= RUNS; ++run)); do
      log="$LOGS/$tree-$test-$run-$$.log"  # the pid: two stress runs may share the folder
      # Windows programs run without a display, as in scripts/test.sh; the
      # window tests start their own.
      if [[ $tree == linux* ]]; then
        ctest --test-dir "$dir" -R "^$test\$" --output-on-failure >"$log" 2>&1
      else
        env -u DISPLAY ctest --test-dir "$dir" -R "^$test\$" --output-on-failure >"$log" 2>&1
      fi
      if grep -qE '^100% tests passed' "$log"; then
        rm -f "$log"
      elif grep -qE '\*\*\*Timeout|=== HANG:' "$log"; then
        hangs=$((hangs + 1))
      else
        failures=$((failures + 1))
      fi
    done
    ((failures + hangs == 0)) || bad=1
    printf '%-8s %-36s %5d %9d %6d %9d\n' "$tree" "$test" "$RUNS" "$failures" "$hangs" $((SECONDS - start))
  done
done
((bad == 0))
