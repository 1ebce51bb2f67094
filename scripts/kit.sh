#!/usr/bin/env bash
# The integrator's kit: dist/TavrinEUI-<version>-kit.zip with the guide and its
# samples, the type library and the C++ header generated from it, and, per
# architecture, the reference engine, the compare program, `tavrine` and the
# compiled samples for Windows.
#
#   scripts/kit.sh [--win64 DIR] [--win32 DIR] [--out DIR]
#
# DIR are built Windows trees (default build/win64 and build/win32), relative
# to the repository root unless absolute; --out is
# where the zip goes (default dist). The version is the CMake project's, as the
# x64 tree's CMakeCache.txt records it (CMAKE_PROJECT_VERSION). A missing
# win32 tree leaves the x86 files out, with a line saying so here and in the
# kit's README. Exit 0 when the zip was written.
set -euo pipefail
cd "$(dirname "$0")/.."
ROOT=$(pwd)
WIN64=build/win64
WIN32=build/win32
OUT=dist
while [[ $# -gt 0 ]]; do
  case $1 in
    --win64) WIN64=$2; shift 2 ;;
    --win32) WIN32=$2; shift 2 ;;
    --out) OUT=$2; shift 2 ;;
    *) echo "kit.sh: unknown option $1" >&2; exit 1 ;;
  esac
done
fail() { echo "kit.sh: $*" >&2; exit 1; }

[[ -f $WIN64/CMakeCache.txt ]] || fail "no built x64 tree: $WIN64/CMakeCache.txt is missing (configure and build $WIN64 first)"
cache_value() { sed -n "s/^$1:[A-Z]*=//p" "$WIN64/CMakeCache.txt" | head -n 1; }
VERSION=$(cache_value CMAKE_PROJECT_VERSION)
[[ -n $VERSION ]] || fail "no version: CMAKE_PROJECT_VERSION is empty in $WIN64/CMakeCache.txt (project() in CMakeLists.txt names no VERSION)"
# Without a VERSION of its own, the top project's CMAKE_PROJECT_VERSION is
# taken from the first subproject that has one (GoogleTest's).
SOURCE=$(cache_value CMAKE_HOME_DIRECTORY)
if ! tr '\n' ' ' <"$SOURCE/CMakeLists.txt" 2>/dev/null | grep -Eq '(^|[^_[:alnum:]])project\([^)]*VERSION'; then
  fail "no version: project() in $SOURCE/CMakeLists.txt names no VERSION (the cache's CMAKE_PROJECT_VERSION $VERSION is a subproject's)"
fi

NAME=TavrinEUI-$VERSION-kit
STAGE=$(mktemp -d)
trap 'rm -rf "$STAGE"' EXIT
KIT=$STAGE/$NAME
mkdir -p "$KIT/guide" "$KIT/include"

# The guide as it stands, samples included (sources and the CI driver).
cp -r docs/integrating/. "$KIT/guide/"

# The header and identifiers come from the same IDL as the type library; they
# do not depend on the architecture.
for f in TavrinEUI.h TavrinEUI_i.c; do
  [[ -f $WIN64/src/com/$f ]] || fail "missing $WIN64/src/com/$f (build the TavrinEUI target)"
  cp "$WIN64/src/com/$f" "$KIT/include/"
done

PROGRAMS=(TavrinEClient.exe TavrinECompareList.exe tavrine.exe)
SAMPLES=(login_silent login_dialog quota tree versions restore delete backup firewall late_bound)
notes=()
add_architecture() {  # ARCH TREE
  local arch=$1 tree=$2 f
  if [[ ! -f $tree/CMakeCache.txt ]]; then
    notes+=("$arch: not in this kit: the $arch tree $tree was not built")
    echo "kit.sh: ${notes[-1]}"
    return 0
  fi
  mkdir -p "$KIT/$arch/samples"
  [[ -f $tree/src/com/TavrinEUI.tlb ]] || fail "missing $tree/src/com/TavrinEUI.tlb"
  cp "$tree/src/com/TavrinEUI.tlb" "$KIT/$arch/"
  for f in "${PROGRAMS[@]}"; do
    [[ -f $tree/bin/$f ]] || fail "missing $tree/bin/$f"
    cp "$tree/bin/$f" "$KIT/$arch/"
  done
  for f in "${SAMPLES[@]}"; do
    [[ -f $tree/samples/$f.exe ]] || fail "missing $tree/samples/$f.exe (build the docs_samples_build target)"
    cp "$tree/samples/$f.exe" "$KIT/$arch/samples/"
  done
}
add_architecture x64 "$WIN64"
add_architecture x86 "$WIN32"

{
  echo "TavrinEUI $VERSION - integrator's kit"
  echo
  echo "guide/            the integrator's guide (start with guide/README.md) and its samples"
  echo "include/          TavrinEUI.h and TavrinEUI_i.c, generated from the type library's IDL"
  echo "x64/, x86/        TavrinEUI.tlb (Win64 / Win32), the reference engine TavrinEClient.exe,"
  echo "                  the compare program TavrinECompareList.exe, the client tavrine.exe,"
  echo "                  and the compiled samples; never ship the reference engine"
  echo
  echo "Set up a vault:  TavrinEClient.exe --make-sample-vault vault   (beside the engine, in the"
  echo "install folder); see guide/troubleshooting.md for the engine's journal."
  for note in "${notes[@]}"; do echo; echo "$note"; done
} | sed 's/$/\r/' >"$KIT/README.txt"

mkdir -p "$OUT"
ZIP=$(cd "$OUT" && pwd)/$NAME.zip
rm -f "$ZIP"
(cd "$STAGE" && zip -q -r -X "$ZIP" "$NAME")
echo "kit.sh: wrote $ZIP ($(stat -c %s "$ZIP") bytes)"
