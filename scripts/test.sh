#!/usr/bin/env bash
# Builds and runs every test suite: native, native with sanitizers, and the
# Windows build under Wine. On a fresh Debian 12 machine it first installs
# what is missing. Ends with one line: "N passed, N failed".
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

GENERATOR=()
command -v ninja >/dev/null && GENERATOR=(-G Ninja)
mkdir -p "$LOGS"

# --- one Wine prefix for the whole run ---------------------------------------
export WINEPREFIX="$BUILD/wine-prefix"
export WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml="
export WINEARCH=win64

total_passed=0
total_failed=0
status=0

# configure + build one tree; the log is shown only when something fails.
build_tree() {
  local name=$1; shift
  local dir="$BUILD/$name"
  say "building $name"
  if ! cmake -S "$ROOT" -B "$dir" "${GENERATOR[@]}" "$@" >"$LOGS/$name-configure.log" 2>&1; then
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
run_tree() {
  local name=$1
  local dir="$BUILD/$name"
  say "testing $name"
  ctest --test-dir "$dir" --output-on-failure 2>&1 | tee "$LOGS/$name-test.log"
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
  if build_tree "$name" "$@"; then
    run_tree "$name" || status=1
  else
    status=1
  fi
}

suite linux
suite linux-asan -DTAVRINE_SANITIZE=ON

# --- valgrind on a representative subset of the native suite ----------------
# Each program counts as one test. The missing-program case is left out: under
# valgrind a failed exec in the child is not reported the same way.
valgrind_step() {
  local name=$1; shift
  local program="$BUILD/linux/bin/$name"
  say "valgrind $name"
  if [[ ! -x $program ]]; then
    total_failed=$((total_failed + 1)); status=1; return
  fi
  if (cd "$BUILD/linux" && timeout 900 valgrind --tool=memcheck --error-exitcode=99 --leak-check=full \
        --errors-for-leak-kinds=definite --suppressions="$ROOT/tests/hardening/valgrind.supp" -q \
        "$program" --gtest_brief=1 "$@") >"$LOGS/valgrind-$name.log" 2>&1; then
    total_passed=$((total_passed + 1))
  else
    grep -E "^==[0-9]+== [A-Z]|FAILED" "$LOGS/valgrind-$name.log" | head -n 20
    echo "valgrind $name failed (log: $LOGS/valgrind-$name.log)" >&2
    total_failed=$((total_failed + 1)); status=1
  fi
}
tavrine_install_packages valgrind || status=1
valgrind_step foundation_tests
valgrind_step engine_tests --gtest_filter=-EngineRunTest.AMissingProgramIsNotWaitedFor

# --- fuzz targets: bounded runs on the checked-in corpora --------------------
say "fuzzing"
TAVRINE_BUILD_ROOT="${TAVRINE_BUILD_ROOT:-build}" "$ROOT/scripts/fuzz.sh" 20 2>&1 | tee "$LOGS/fuzz.log"
fuzz_line=$(tail -n 1 "$LOGS/fuzz.log")
if [[ $fuzz_line =~ ^([0-9]+)\ passed,\ ([0-9]+)\ failed$ ]]; then
  total_passed=$((total_passed + BASH_REMATCH[1]))
  total_failed=$((total_failed + BASH_REMATCH[2]))
  ((BASH_REMATCH[2] == 0)) || status=1
else
  total_failed=$((total_failed + 1)); status=1
fi

# No display for the Windows run: message boxes return at once instead of waiting.
unset DISPLAY
if [[ ! -f "$WINEPREFIX/system.reg" ]]; then
  say "creating the Wine prefix (first boot takes a few seconds)"
  mkdir -p "$WINEPREFIX"
  if ! wineboot -i >"$LOGS/wineboot.log" 2>&1; then
    cat "$LOGS/wineboot.log" >&2
    status=1
  fi
  wineserver -w
fi
suite win64 -DCMAKE_TOOLCHAIN_FILE="$ROOT/cmake/mingw-w64-x86_64.cmake"

# --- 32-bit tree: build/win32, its suites when wine32 can be had ---------------
source "$ROOT/scripts/lib/wine32.sh"
tavrine_win32_suite
# --- end of the 32-bit tree ----------------------------------------------------
wineserver -k >/dev/null 2>&1 || true

echo "$total_passed passed, $total_failed failed"
exit "$status"
