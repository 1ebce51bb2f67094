#!/usr/bin/env bash
# Builds and runs every test suite: native, native with sanitizers, and the
# Windows build under Wine. On a fresh Debian 12 machine it first installs
# what is missing. Prints the time of each stage, then ends with one line:
# "N passed, N failed".
set -uo pipefail
cd "$(dirname "$0")/.."
ROOT=$(pwd)
JOBS=2
# TAVRINE_BUILD_ROOT lets a second run build beside the usual trees.
BUILD="$ROOT/${TAVRINE_BUILD_ROOT:-build}"
LOGS="$BUILD/logs"

say() { printf '==> %s\n' "$*"; }

# --- packages ---------------------------------------------------------------
source "$ROOT/scripts/lib/packages.sh"
tavrine_install_packages "${TAVRINE_PACKAGES[@]}" || exit 1
tavrine_install_packages ccache || say "no ccache: every tree is built from scratch"
source "$ROOT/scripts/lib/ccache.sh"

GENERATOR=()
command -v ninja >/dev/null && GENERATOR=(-G Ninja)
mkdir -p "$LOGS"

# --- the Wine prefix of the run (the long tests make a second beside it) ----
export WINEPREFIX="$BUILD/wine-prefix"
export WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml="
export WINEARCH=win64

total_passed=0
total_failed=0
status=0

# The Wine prefix boots in the background while the native trees build.
prefix_pid=
if [[ ! -f "$WINEPREFIX/system.reg" ]]; then
  say "creating the Wine prefix in the background"
  mkdir -p "$WINEPREFIX"
  (env -u DISPLAY wineboot -i && wineserver -w) >"$LOGS/wineboot.log" 2>&1 &
  prefix_pid=$!
fi
wait_for_wine_prefix() {
  [[ -n $prefix_pid ]] || return 0
  if ! wait "$prefix_pid"; then
    cat "$LOGS/wineboot.log" >&2
    status=1
  fi
}

# "stage: seconds" for each timed step, printed at the end.
stage_times=()
timed() {
  local stage=$1 start=$SECONDS rc; shift
  "$@"
  rc=$?
  stage_times+=("$stage: $((SECONDS - start))")
  return "$rc"
}

# configure + build one tree; the log is shown only when something fails.
build_tree() {
  local name=$1; shift
  local dir="$BUILD/$name"
  say "building $name"
  if ! cmake -S "$ROOT" -B "$dir" "${GENERATOR[@]}" "${TAVRINE_LAUNCHER[@]}" "$@" \
       >"$LOGS/$name-configure.log" 2>&1; then
    tail -n 60 "$LOGS/$name-configure.log"
    echo "$name: configure failed" >&2
    return 1
  fi
  if ! cmake --build "$dir" -j"$JOBS" >"$LOGS/$name-build.log" 2>&1; then
    grep -E "error|Error|FAILED" "$LOGS/$name-build.log" | head -n 40
    echo "$name: build failed (full log: $LOGS/$name-build.log)" >&2
    return 1
  fi
}

# ctest prints "X% tests passed, Y tests failed out of Z"; add it to the totals.
# Tests run two at a time; those that share a Wine registry or a display hold
# a resource lock and never run beside each other.
run_tree() {
  local name=$1
  local dir="$BUILD/$name"
  say "testing $name"
  ctest --test-dir "$dir" --output-on-failure -j"$JOBS" 2>&1 | tee "$LOGS/$name-test.log"
  local rc=${PIPESTATUS[0]}
  local line
  line=$(grep -E "tests passed, [0-9]+ tests? failed out of [0-9]+" "$LOGS/$name-test.log" | tail -n 1)
  if [[ $line =~ ([0-9]+)\ tests?\ failed\ out\ of\ ([0-9]+) ]]; then
    local failed=${BASH_REMATCH[1]} count=${BASH_REMATCH[2]}
    total_failed=$((total_failed + failed))
    total_passed=$((total_passed + count - failed))
  fi
  return "$rc"
}

suite() {
  local name=$1; shift
  if timed "$name build" build_tree "$name" "$@"; then
    timed "$name tests" run_tree "$name" || status=1
  else
    status=1
  fi
}

suite linux
# No benchmarks under the sanitizers: nothing runs them there.
suite linux-asan -DTAVRINE_SANITIZE=ON -DTAVRINE_BENCH=OFF

# --- valgrind on a representative subset of the native suite ----------------
# Each program counts as one test; the two run side by side.
valgrind_run() {
  local name=$1; shift
  local program="$BUILD/linux/bin/$name"
  say "valgrind $name"
  [[ -x $program ]] || { echo "valgrind $name: $program missing" >&2; return 1; }
  if ! (cd "$BUILD/linux" && timeout 900 valgrind --tool=memcheck --error-exitcode=99 --leak-check=full \
        --errors-for-leak-kinds=definite --suppressions="$ROOT/tests/hardening/valgrind.supp" -q \
        "$program" --gtest_brief=1 "$@") >"$LOGS/valgrind-$name.log" 2>&1; then
    grep -E "^==[0-9]+== [A-Z]|FAILED" "$LOGS/valgrind-$name.log" | head -n 20
    echo "valgrind $name failed (log: $LOGS/valgrind-$name.log)" >&2
    return 1
  fi
}
valgrind_steps() {
  local pids=() pid
  valgrind_run foundation_tests & pids+=($!)
  valgrind_run engine_tests & pids+=($!)
  for pid in "${pids[@]}"; do
    if wait "$pid"; then
      total_passed=$((total_passed + 1))
    else
      total_failed=$((total_failed + 1)); status=1
    fi
  done
}
tavrine_install_packages valgrind || status=1
timed valgrind valgrind_steps

# --- fuzz targets: a few seconds each on the checked-in corpora --------------
# Longer runs: scripts/fuzz.sh <seconds per target>.
fuzz_steps() {
  say "fuzzing"
  TAVRINE_BUILD_ROOT="${TAVRINE_BUILD_ROOT:-build}" "$ROOT/scripts/fuzz.sh" 3 2>&1 | tee "$LOGS/fuzz.log"
  local fuzz_line
  fuzz_line=$(tail -n 1 "$LOGS/fuzz.log")
  if [[ $fuzz_line =~ ^([0-9]+)\ passed,\ ([0-9]+)\ failed$ ]]; then
    total_passed=$((total_passed + BASH_REMATCH[1]))
    total_failed=$((total_failed + BASH_REMATCH[2]))
    ((BASH_REMATCH[2] == 0)) || status=1
  else
    total_failed=$((total_failed + 1)); status=1
  fi
}
timed fuzz fuzz_steps

# No display for the Windows run: message boxes return at once instead of waiting.
unset DISPLAY
timed "wine prefix" wait_for_wine_prefix
suite win64 -DCMAKE_TOOLCHAIN_FILE="$ROOT/cmake/mingw-w64-x86_64.cmake"

# --- 32-bit tree: build/win32, its suites when wine32 can be had ---------------
source "$ROOT/scripts/lib/wine32.sh"
timed "win32 (build, tests)" tavrine_win32_suite
# --- end of the 32-bit tree ----------------------------------------------------

# The wineservers of the prefix and of those that tests made beside it.
for prefix in "$WINEPREFIX" "$WINEPREFIX"-*/; do
  [[ -d $prefix ]] && WINEPREFIX=${prefix%/} wineserver -k >/dev/null 2>&1
done

say "stage times (seconds)"
printf '%s\n' "${stage_times[@]}"
echo "$total_passed passed, $total_failed failed"
exit "$status"
