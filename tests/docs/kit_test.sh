#!/usr/bin/env bash
# scripts/kit.sh against built trees made of stand-in files: the zip holds the
# guide, the header, and per architecture the type library, the programs and
# the samples; a missing x86 tree is left out with a line saying so; a tree
# whose CMake project has no version makes no kit.
#   kit_test.sh WORK-DIR
set -uo pipefail
ROOT=$(cd "$(dirname "$0")/../.." && pwd)
WORK=$1
rm -rf "$WORK" && mkdir -p "$WORK"
status=0
check() { if [[ $2 -eq 0 ]]; then echo "CHECK $1 ok"; else echo "CHECK $1 FAILED"; status=1; fi; }

fake_tree() {  # DIR VERSION-LINE PROJECT-LINE
  mkdir -p "$1/src/com" "$1/bin" "$1/samples" "$1/source"
  printf '%s\n' "cmake_minimum_required(VERSION 3.20)" "$3" >"$1/source/CMakeLists.txt"
  printf '%s\n' "CMAKE_BUILD_TYPE:STRING=" "$2" "CMAKE_HOME_DIRECTORY:INTERNAL=$1/source" >"$1/CMakeCache.txt"
  for f in TavrinEUI.tlb TavrinEUI.h TavrinEUI_i.c; do echo "$f of $1" >"$1/src/com/$f"; done
  for f in TavrinEClient.exe TavrinECompareList.exe tavrine.exe; do echo "$f of $1" >"$1/bin/$f"; done
  for f in login_silent login_dialog quota tree versions restore delete backup firewall late_bound; do
    echo "$f of $1" >"$1/samples/$f.exe"
  done
}
VERSIONED=$'project(TavrinEUI\n  VERSION 1.2.3 LANGUAGES C CXX)'
fake_tree "$WORK/win64" "CMAKE_PROJECT_VERSION:STATIC=1.2.3" "$VERSIONED"

out=$("$ROOT/scripts/kit.sh" --win64 "$WORK/win64" --win32 "$WORK/no-win32" --out "$WORK/dist" 2>&1)
rc=$?
echo "$out"
zip="$WORK/dist/TavrinEUI-1.2.3-kit.zip"
[[ $rc -eq 0 && -f $zip ]]
check "zip written" $?
listing=$(unzip -Z1 "$zip" 2>/dev/null)
missing=0
for f in README.txt guide/README.md guide/result-codes.md guide/samples/quota.cpp guide/samples/script.vbs \
         include/TavrinEUI.h include/TavrinEUI_i.c x64/TavrinEUI.tlb x64/TavrinEClient.exe \
         x64/TavrinECompareList.exe x64/tavrine.exe x64/samples/late_bound.exe; do
  grep -qx "TavrinEUI-1.2.3-kit/$f" <<<"$listing" || { echo "missing $f"; missing=1; }
done
check "contents" $missing
! grep -q "^TavrinEUI-1.2.3-kit/x86/" <<<"$listing" && [[ $out == *"x86: not in this kit: the x86 tree $WORK/no-win32 was not built"* ]] &&
  unzip -p "$zip" TavrinEUI-1.2.3-kit/README.txt | grep -q "x86: not in this kit"
check "missing x86 said, left out" $?

fake_tree "$WORK/win32" "CMAKE_PROJECT_VERSION:STATIC=1.2.3" "$VERSIONED"
"$ROOT/scripts/kit.sh" --win64 "$WORK/win64" --win32 "$WORK/win32" --out "$WORK/dist" >/dev/null 2>&1 &&
  [[ $(unzip -p "$zip" TavrinEUI-1.2.3-kit/x86/tavrine.exe) == "tavrine.exe of $WORK/win32" ]]
check "x86 from the win32 tree" $?

fake_tree "$WORK/unversioned" "CMAKE_PROJECT_VERSION:STATIC=" "project(TavrinEUI LANGUAGES C CXX)"
out=$("$ROOT/scripts/kit.sh" --win64 "$WORK/unversioned" --out "$WORK/dist2" 2>&1)
rc=$?
echo "$out"
[[ $rc -ne 0 && $out == *"no version: CMAKE_PROJECT_VERSION is empty"* && ! -e $WORK/dist2 ]]
check "no version, no kit" $?

# A project without a version of its own: the cache holds GoogleTest's.
fake_tree "$WORK/borrowed" "CMAKE_PROJECT_VERSION:STATIC=1.12.1" "project(TavrinEUI LANGUAGES C CXX)"
out=$("$ROOT/scripts/kit.sh" --win64 "$WORK/borrowed" --out "$WORK/dist3" 2>&1)
rc=$?
echo "$out"
[[ $rc -ne 0 && $out == *"names no VERSION (the cache's CMAKE_PROJECT_VERSION 1.12.1 is a subproject's)"* && ! -e $WORK/dist3 ]]
check "a subproject's version, no kit" $?
exit $status
