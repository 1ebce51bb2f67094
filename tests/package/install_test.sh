#!/usr/bin/env bash
# The installer under Wine, in a prefix of its own made fresh for this run:
#   install version N; create the classes by ProgID from a script host that
#   registered nothing itself and run one operation against the reference
#   engine; install N+1 over N (one product afterwards); uninstall; every file
#   the packages installed is gone and the registry exports equal the ones
#   taken before the first install.
# usage: install_test.sh ARCH VERSION BIN_DIR REGTABLE WORK [--no-client]
#   BIN_DIR holds TavrinEUI.dll and the reference engine of ARCH; REGTABLE is
#   a tavrine-regtable.exe that this Wine runs. --no-client leaves out the
#   classes and the operation (an x86 package without a 32-bit Wine: 64-bit
#   msiexec still installs and removes it). Exit 0 only when every step passed.
set -uo pipefail
ARCH=$1 VERSION=$2
BIN=$(realpath -m "$3") REGTABLE=$(realpath -m "$4") WORK=$(realpath -m "$5") CLIENT=${6:-}
ROOT=$(cd "$(dirname "$0")/../.." && pwd)
source "$ROOT/scripts/lib/msi.sh"

export WINEPREFIX=$WORK/prefix WINEARCH=win64 WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
unset DISPLAY
WINE=${TAVRINE_WINE:-wine}
failures=0
step() { printf '%s: %s\n' "$1" "$2"; [[ $1 == ok ]] || failures=$((failures + 1)); }
check() {  # WHAT COMMAND...
  local what=$1; shift
  if "$@"; then step ok "$what"; else step FAIL "$what"; fi
}

# REG_VIEW: the registry view the package writes to (x86: the 32-bit one).
case $ARCH in
  x64) PROGRAM_FILES="Program Files"; SCRIPT_HOST=cscript; REG_VIEW=/reg:64 ;;
  x86) PROGRAM_FILES="Program Files (x86)"; SCRIPT_HOST='C:\windows\syswow64\cscript.exe'; REG_VIEW=/reg:32 ;;
  *) echo "unknown architecture $ARCH" >&2; exit 2 ;;
esac
INSTALL="$WINEPREFIX/drive_c/$PROGRAM_FILES/TavrinEUI"

# N+1: the patch number raised by one.
NEXT=${VERSION%.*}.$((${VERSION##*.} + 1))

wineserver -k >/dev/null 2>&1
rm -rf "$WORK"
mkdir -p "$WORK/exchange"
if ! wineboot -i >"$WORK/wineboot.log" 2>&1; then
  cat "$WORK/wineboot.log" >&2; echo "FAIL: the Wine prefix could not be made"; exit 1
fi
wineserver -w

for version in "$VERSION" "$NEXT"; do
  if ! tavrine_build_msi "$ARCH" "$version" "$BIN" "$REGTABLE" "$WORK/TavrinEUI-$version-$ARCH.msi"; then
    echo "FAIL: the $version package could not be made"; exit 1
  fi
done

export_registry() {  # SUFFIX
  local hive
  for hive in HKLM HKCU; do
    "$WINE" reg export "$hive" "$(tavrine_winpath "$WORK")\\$hive-$1.reg" /y >/dev/null 2>&1 || return 1
  done
}
# An export as text, without the keys that hold no value: Windows Installer
# keeps empty keys of its own (Installer\..., the parent of a product's
# Uninstall entry), and on removal it deletes the empty parents of the keys it
# removes, even ones that were there before (in a fresh prefix the 32-bit
# view's CLSID and Interface keys are empty). Every value, and every key that
# holds one, must be as before.
registry_text() {
  iconv -f UTF-16 -t UTF-8 "$1" | tr -d '\r' | awk 'BEGIN { RS = ""; ORS = "\n\n" } /\n/ { print }'
}
msiexec() { "$WINE" msiexec "$@" >>"$WORK/msiexec.log" 2>&1; }
package() { tavrine_winpath "$WORK/TavrinEUI-$1-$ARCH.msi"; }
# The file names in a package's File table (Configuration.ini, German.ini ...);
# a file lives in the install folder or its Lang folder.
installed_files() {
  msiinfo export "$WORK/TavrinEUI-$VERSION-$ARCH.msi" File | tail -n +4 | cut -f3 | sed 's/^[^|]*|//'
}
files_present() { local f; for f in $(installed_files); do [[ -f $INSTALL/$f || -f $INSTALL/Lang/$f ]] || return 1; done; }
files_absent() { local f; for f in $(installed_files); do [[ ! -e $INSTALL/$f && ! -e $INSTALL/Lang/$f ]] || return 1; done; }
# The versions of the installed products named TavrinEUI, one line each.
installed_versions() {
  "$WINE" reg query 'HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall' /s "$REG_VIEW" 2>/dev/null |
    tr -d '\r' | awk '/^HKEY/ { if (ours) print version; ours = 0; version = "" }
                      /DisplayName/ && / TavrinEUI$/ { ours = 1 }
                      /DisplayVersion/ { version = $NF }
                      END { if (ours) print version }'
}
registry_value() { "$WINE" reg query "$1" /ve "$REG_VIEW" 2>/dev/null | tr -d '\r' | awk -F'REG_SZ' 'NF > 1 {sub(/^ +/, "", $2); print $2}'; }

# The script host registers its own type library on its first run: that
# happens before the first export, so the comparison sees only the installer's.
printf 'WScript.Quit 0\r\n' >"$WORK/nothing.vbs"
"$WINE" "$SCRIPT_HOST" //nologo "$(tavrine_winpath "$WORK/nothing.vbs")" >/dev/null 2>&1
export_registry before || { echo "FAIL: registry export"; exit 1; }

check "msiexec /i $VERSION /qn" msiexec /i "$(package "$VERSION")" /qn
check "the installed files are in place" files_present
check "$VERSION installed ($(installed_versions | paste -sd' '))" test "$(installed_versions)" = "$VERSION"
check "the ProgID names the class" test -n "$(registry_value 'HKCR\TavrinEUI.clsAPI_Interface\CLSID')"

run_operation() {
  # One operation through the registered classes, the engine answering -17.
  cp "$BIN/TavrinEClient.exe" "$INSTALL/TavrinEClsClient.exe"
  printf 'on 115\r\n  output -17\r\n' >"$INSTALL/engine-scenario.txt"
  cat >"$WORK/operation.vbs" <<'VBS'
Dim api, result
Set api = CreateObject("TavrinEUI.clsAPI_Interface")
result = api.API_REMOTE(WScript.Arguments(0))
WScript.Echo "API_REMOTE " & result
VBS
  operation=$("$WINE" "$SCRIPT_HOST" //nologo "$(tavrine_winpath "$WORK/operation.vbs")" \
                "$(tavrine_winpath "$WORK/exchange")" 2>&1 | tr -d '\r')
  check "API_REMOTE through the installed classes returns the engine's code ($operation)" \
    test "$operation" = "API_REMOTE -17"
  check "the engine ran once with code 115" grep -q "115" "$INSTALL/engine-journal.txt"
}
if [[ $CLIENT == --no-client ]]; then
  echo "not run: the classes and the operation (no client of this architecture)"
else
  run_operation
fi
# What the run left (the engine, its journal, the library's work folders and
# the user's profile) is the test's, not the installer's: removed here.
find "$INSTALL" -mindepth 1 -maxdepth 1 ! -name TavrinEUI.dll ! -name Configuration.ini ! -name Lang \
  -exec rm -rf {} +
"$WINE" reg delete 'HKCU\Software\Brennick' /f >/dev/null 2>&1

check "msiexec /i $NEXT over $VERSION /qn" msiexec /i "$(package "$NEXT")" /qn
check "one product installed after the upgrade, $NEXT ($(installed_versions | paste -sd' '))" \
  test "$(installed_versions | paste -sd' ')" = "$NEXT"
check "the upgraded files are in place" files_present

check "msiexec /x $NEXT /qn" msiexec /x "$(package "$NEXT")" /qn
check "no product installed" test -z "$(installed_versions)"
check "the installed files are gone" files_absent
check "the install folder is gone" test ! -e "$INSTALL"
export_registry after || { echo "FAIL: registry export"; exit 1; }
for hive in HKLM HKCU; do
  if diff <(registry_text "$WORK/$hive-before.reg") <(registry_text "$WORK/$hive-after.reg") >"$WORK/$hive.diff"; then
    step ok "$hive after the uninstall equals $hive before the install"
  else
    step FAIL "$hive differs after the uninstall:"; head -n 40 "$WORK/$hive.diff"
  fi
done

wineserver -k >/dev/null 2>&1
if ((failures)); then echo "install test ($ARCH): $failures step(s) failed"; exit 1; fi
echo "install test ($ARCH): all steps passed"
