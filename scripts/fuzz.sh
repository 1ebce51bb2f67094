#!/usr/bin/env bash
# Builds the libFuzzer targets (clang, ASan + UBSan) in build/fuzz and runs
# each for a bounded time on its checked-in corpus. New inputs go to a scratch
# corpus in the build tree; crashes are kept there as crash-* files.
#   scripts/fuzz.sh [seconds per target (default 20)] [target ...]
# Ends with one line: "N passed, N failed" (one count per target).
set -uo pipefail
cd "$(dirname "$0")/.."
ROOT=$(pwd)
SECONDS_EACH=${1:-20}
shift || true
BUILD="$ROOT/${TAVRINE_BUILD_ROOT:-build}/fuzz"
JOBS=2

say() { printf '==> %s\n' "$*"; }

source "$ROOT/scripts/lib/packages.sh"
tavrine_install_packages clang libclang-rt-14-dev || exit 1
source "$ROOT/scripts/lib/ccache.sh"

GENERATOR=()
command -v ninja >/dev/null && GENERATOR=(-G Ninja)
mkdir -p "$BUILD/logs"
flags="-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer -g -O1"
say "building the fuzz targets"
if ! cmake -S "$ROOT" -B "$BUILD" "${GENERATOR[@]}" "${TAVRINE_LAUNCHER[@]}" -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
     -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_FLAGS="$flags" -DCMAKE_C_FLAGS="$flags" \
     -DCMAKE_EXE_LINKER_FLAGS="-fsanitize=address,undefined" \
     -DTAVRINE_FUZZ=ON -DTAVRINE_BUILD_TESTS=OFF >"$BUILD/logs/configure.log" 2>&1 ||
   ! cmake --build "$BUILD" --target fuzz_all -j"$JOBS" >"$BUILD/logs/build.log" 2>&1; then
  grep -E "error|Error" "$BUILD/logs/configure.log" "$BUILD/logs/build.log" | head -n 40
  echo "fuzz build failed (logs in $BUILD/logs)" >&2
  echo "0 passed, 1 failed"
  exit 1
fi

targets=("$@")
if ((${#targets[@]} == 0)); then
  for corpus in "$ROOT"/fuzz/corpus/*/; do targets+=("$(basename "$corpus")"); done
fi

passed=0
failed=0
for target in "${targets[@]}"; do
  program="$BUILD/bin/fuzz_$target"
  scratch="$BUILD/corpus/$target"
  artifacts="$BUILD/artifacts/$target"
  mkdir -p "$scratch" "$artifacts"
  # The scratch corpus comes first: libFuzzer adds what it finds to the first folder.
  ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
    timeout $((SECONDS_EACH + 60)) "$program" "$scratch" "$ROOT/fuzz/corpus/$target" \
    -max_total_time="$SECONDS_EACH" -max_len=65536 -timeout=10 -rss_limit_mb=2048 \
    -artifact_prefix="$artifacts/" -print_final_stats=1 >"$BUILD/logs/$target.log" 2>&1
  rc=$?
  execs=$(grep -Eo 'stat::number_of_executed_units: *[0-9]+' "$BUILD/logs/$target.log" | grep -Eo '[0-9]+$')
  if ((rc == 0)); then
    passed=$((passed + 1))
    say "fuzz_$target: ${execs:-?} runs, no crash"
  else
    failed=$((failed + 1))
    say "fuzz_$target: FAILED (exit $rc); log $BUILD/logs/$target.log"
    grep -E "ERROR|SUMMARY|runtime error|Test unit written" "$BUILD/logs/$target.log" | head -n 8
  fi
done
echo "$passed passed, $failed failed"
((failed == 0))
