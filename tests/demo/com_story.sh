#!/usr/bin/env bash
# The demo's story through TavrinEUI.dll under Wine: an install folder with the
# DLL, the Windows engine and the sample vault; regsvr32; tavrine-com-demo.exe
# (COM only); optional login dialog screenshots; unregister. Prints the
# client's "STEP <name> ok|FAILED ..." lines; exit 0 when everything passed.
#
#   com_story.sh WIN64-BIN-DIR WORK-DIR [--name INSTALLATION-NAME] [--screenshots DIR]
#
# WINEPREFIX comes from the caller. The profile lives in the prefix's registry
# under HKCU\Software\Brennick\<installation name>: removed before and after,
# so a run never sees an earlier one's login.
set -uo pipefail
HERE=$(cd "$(dirname "$0")" && pwd)
ROOT=$(cd "$HERE/../.." && pwd)
[[ $# -ge 2 ]] || { echo "usage: $0 WIN64-BIN-DIR WORK-DIR [--name NAME] [--screenshots DIR]" >&2; exit 1; }
BIN=$(cd "$1" && pwd)
WORK=$2
shift 2
NAME=TavrinEDemoTest
SHOTS=
while [[ $# -gt 0 ]]; do
  case $1 in
    --name) NAME=$2; shift 2 ;;
    --screenshots) SHOTS=$2; shift 2 ;;
    *) echo "unknown option $1" >&2; exit 1 ;;
  esac
done
export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
WINE=${TAVRINE_WINE:-wine}

# Z:\... is how a Wine program sees a Linux path.
winpath() { local p; p=$(cd "$(dirname "$1")" && pwd)/$(basename "$1"); p=${p//\//\\}; printf 'Z:%s' "$p"; }

write_configuration() {  # LANGUAGE
  printf '%s\r\n' "[ProductInfo]" "ProductNumber=7" "ProductName=TavrinE" "ProductInstallationName=$NAME" \
    "ProductTreeViewName=TavrinE Backup" "Language=$1" "ProductCaption=TavrinE Online Backup" "ExeGroup=TavrinE" \
    "[ConnectionInfo]" "DomainName=localhost" "IPAddress1=127.0.0.1" "Port=443" "EngineTimeoutSeconds=120" \
    >"$INSTALL/Configuration.ini"
}

status=0
fail() { echo "STEP $1 FAILED $2"; status=1; }

# A fresh install folder: the DLL with its engine under both names, the compare
# program, the client, the language tables, the sample vault beside the engine.
rm -rf "$WORK"
INSTALL=$WORK/install
mkdir -p "$INSTALL/Lang" "$WORK/story"
for f in TavrinEUI.dll TavrinEClient.exe TavrinECompareList.exe tavrine-com-demo.exe; do
  cp "$BIN/$f" "$INSTALL/" || { echo "missing $BIN/$f" >&2; exit 1; }
done
cp "$INSTALL/TavrinEClient.exe" "$INSTALL/TavrinEClsClient.exe"
cp "$ROOT"/data/Lang/*.ini "$INSTALL/Lang/" 2>/dev/null
write_configuration English
PROFILE_KEY="HKCU\\Software\\Brennick\\$NAME"
"$WINE" reg delete "$PROFILE_KEY" /f >/dev/null 2>&1

if ! (cd "$INSTALL" && "$WINE" TavrinEClient.exe --make-sample-vault vault) || [[ ! -f $INSTALL/vault/vault.txt ]]; then
  fail vault "the sample vault could not be made"
  exit 1
fi
DLL=$(winpath "$INSTALL/TavrinEUI.dll")
if "$WINE" regsvr32 /s "$DLL"; then
  echo "STEP register ok regsvr32 $DLL"
else
  fail register "regsvr32 $DLL"
fi

# The story; message boxes must not wait for a click, so no display here.
(cd "$INSTALL" && env -u DISPLAY "$WINE" tavrine-com-demo.exe story "$(winpath "$WORK/story")" "$(winpath "$INSTALL/vault")") |
  tr -d '\r'
[[ ${PIPESTATUS[0]} -eq 0 ]] || status=1

if [[ -n $SHOTS ]]; then
  mkdir -p "$SHOTS"
  for language in English German; do
    write_configuration "$language"
    png="$SHOTS/login_$( [[ $language == German ]] && echo de || echo en ).png"
    rm -f "$png"
    # A desktop of its own: the prefix's default desktop may belong to a
    # wineserver started without a display, which has no window driver.
    out=$(cd "$INSTALL" && timeout 120 "$ROOT/tests/dialogs/win32/run_with_display.sh" \
            "$WINE" explorer /desktop=TavrinEDemo,1024x768 tavrine-com-demo.exe screenshot-login "$(winpath "$png")" \
            2>&1 | tr -d '\r')
    echo "$out"
    if [[ -s $png ]]; then
      echo "STEP screenshot-$language ok $png ($(stat -c %s "$png") bytes)"
    else
      fail "screenshot-$language" "no $png"
    fi
  done
  write_configuration English
fi

if "$WINE" regsvr32 /u /s "$DLL" && ! "$WINE" reg query 'HKCR\TavrinEUI.clsClient' >/dev/null 2>&1; then
  echo "STEP unregister ok the ProgIDs are gone"
else
  fail unregister "regsvr32 /u $DLL"
fi
"$WINE" reg delete "$PROFILE_KEY" /f >/dev/null 2>&1
exit "$status"
