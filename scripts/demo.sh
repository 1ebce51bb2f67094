#!/usr/bin/env bash
# The demo, end to end on one machine. On a fresh Debian 12 machine it first
# installs what is missing, then builds the native and the Windows trees
# (build/linux, build/win64: the trees scripts/test.sh uses, so a demo after a
# test run builds little), and runs the story against a fresh sample vault:
#   1. the command-line client `tavrine`, natively;
#   2. the same story through the registered TavrinEUI.dll under Wine, by a
#      small COM client, with screenshots of the login dialog (English, German).
# Everything it makes goes to demo-output/, which each run starts afresh.
# Ends with a one-screen summary; exit 0 when every step passed.
set -uo pipefail
cd "$(dirname "$0")/.."
ROOT=$(pwd)
JOBS=2
BUILD="$ROOT/${TAVRINE_BUILD_ROOT:-build}"
OUT="$ROOT/demo-output"
LOGS="$OUT/logs"

say() { printf '\n==> %s\n' "$*"; }
elapsed() { local s=$(($(date +%s) - $1)); printf '%dm%02ds' $((s / 60)) $((s % 60)); }
started=$(date +%s)

# --- packages: the same list as the tests, so the shared trees stay alike -----
source "$ROOT/scripts/lib/packages.sh"
tavrine_install_packages "${TAVRINE_PACKAGES[@]}" || exit 1

# --- a clean output folder: nothing from an earlier run survives ------------------
rm -rf "$OUT"
mkdir -p "$LOGS"

# --- build only what the demo runs; scripts/test.sh builds the rest -------------
GENERATOR=()
command -v ninja >/dev/null && GENERATOR=(-G Ninja)
build_tree() {  # NAME TARGETS... -- CMAKE-ARGS...
  local name=$1 dir="$BUILD/$1"; shift
  local targets=()
  while [[ $# -gt 0 && $1 != -- ]]; do targets+=("$1"); shift; done
  shift
  if ! cmake -S "$ROOT" -B "$dir" "${GENERATOR[@]}" "$@" >"$LOGS/$name-configure.log" 2>&1; then
    tail -n 40 "$LOGS/$name-configure.log"
    echo "$name: configure failed (log: $LOGS/$name-configure.log)" >&2
    return 1
  fi
  if ! cmake --build "$dir" -j"$JOBS" --target "${targets[@]}" >"$LOGS/$name-build.log" 2>&1; then
    grep -E "error|Error|FAILED" "$LOGS/$name-build.log" | head -n 40
    echo "$name: build failed (log: $LOGS/$name-build.log)" >&2
    return 1
  fi
}
build_started=$(date +%s)
if [[ ! -f $BUILD/linux/bin/tavrine || ! -f $BUILD/win64/bin/TavrinEUI.dll ]]; then
  say "building build/linux and build/win64: the first build takes several minutes on 2 cores; later runs reuse them"
else
  say "building (up to date trees: a few seconds)"
fi
build_tree linux TavrinEClient TavrinECompareList tavrine -- || exit 1
build_tree win64 TavrinEUI TavrinEClient TavrinECompareList tavrine-com-demo -- \
  -DCMAKE_TOOLCHAIN_FILE="$ROOT/cmake/mingw-w64-x86_64.cmake" || exit 1
build_time=$(elapsed "$build_started")

# --- one Wine prefix, shared with the tests --------------------------------------
export WINEPREFIX="$BUILD/wine-prefix" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" WINEARCH=win64
# The story runs without a display (a message box must never wait for a click);
# the screenshots bring their own Xvfb.
unset DISPLAY
if [[ ! -f $WINEPREFIX/system.reg ]]; then
  say "creating the Wine prefix (first boot takes a few seconds)"
  mkdir -p "$WINEPREFIX"
  wineboot -i >"$LOGS/wineboot.log" 2>&1 || { cat "$LOGS/wineboot.log" >&2; exit 1; }
  wineserver -w
fi

# --- the story -------------------------------------------------------------------
story_started=$(date +%s)
say "1. the command-line client: tavrine against a fresh sample vault (demo-output/cli)"
"$ROOT/tests/demo/cli_story.sh" "$BUILD/linux/bin" "$OUT/cli" 2>&1 | tee "$LOGS/cli-story.log"
cli_status=${PIPESTATUS[0]}

say "2. the same story through TavrinEUI.dll under Wine: tavrine-com-demo.exe, COM only (demo-output/com)"
"$ROOT/tests/demo/com_story.sh" "$BUILD/win64/bin" "$OUT/com" --name TavrinE --screenshots "$OUT/screenshots" 2>&1 |
  tee "$LOGS/com-story.log"
com_status=${PIPESTATUS[0]}
story_time=$(elapsed "$story_started")

# --- summary: one screen -----------------------------------------------------------
steps() {  # LOG: "name  ok|FAILED  figures", one line per STEP
  sed -n 's/^STEP \([^ ]*\) \(ok\|FAILED\) \(.*\)$/\1\t\2\t\3/p' "$1" |
    awk -F'\t' '{ printf "  %-20s %-6s %s\n", $1, $2, substr($3, 1, 96) }'
}
ok_count=$(cat "$LOGS"/cli-story.log "$LOGS"/com-story.log | grep -c '^STEP [^ ]* ok ')
failed_count=$(cat "$LOGS"/cli-story.log "$LOGS"/com-story.log | grep -c '^STEP [^ ]* FAILED ')
{
  echo
  echo "=================================== TavrinEUI demo ==================================="
  echo "tavrine, native (build/linux) against a fresh sample vault; account anna, two computers"
  steps "$LOGS/cli-story.log"
  echo "tavrine-com-demo.exe -> registered TavrinEUI.dll under Wine (build/win64), COM only"
  steps "$LOGS/com-story.log"
  echo "screenshots: $(cd "$OUT" && ls screenshots/*.png 2>/dev/null | tr '\n' ' ')"
  echo "output:      demo-output/ (logs/, cli/, com/, screenshots/)"
  echo "time:        build $build_time, story $story_time, total $(elapsed "$started")"
  if [[ $cli_status -eq 0 && $com_status -eq 0 && $failed_count -eq 0 ]]; then
    echo "RESULT:      all $ok_count steps ok"
  else
    echo "RESULT:      $failed_count step(s) FAILED, $ok_count ok (details above and in demo-output/logs/)"
  fi
  echo "======================================================================================"
} | tee "$OUT/summary.txt"
[[ $cli_status -eq 0 && $com_status -eq 0 && $failed_count -eq 0 ]]
