#!/usr/bin/env bash
# Login dialog screenshots at 150% (144 dpi), English and German, in a Wine
# prefix of its own. Needs a built build/win64 (scripts/test.sh makes it).
#   scripts/dpi-screenshots.sh [OUT-DIR]     (default build/screenshots-150)
set -euo pipefail
ROOT=$(cd "$(dirname "$0")/.." && pwd)
BIN=${TAVRINE_WIN64_BIN:-$ROOT/build/win64/bin}
OUT=$(mkdir -p "${1:-$ROOT/build/screenshots-150}" && cd "${1:-$ROOT/build/screenshots-150}" && pwd)
WORK=$(mktemp -d)
trap 'WINEPREFIX=$WORK/prefix wineserver -k 2>/dev/null; rm -rf "$WORK"' EXIT
export WINEPREFIX=$WORK/prefix WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" WINEARCH=win64
unset DISPLAY
winpath() { local p=${1//\//\\}; printf 'Z:%s' "$p"; }

INSTALL=$WORK/install
mkdir -p "$INSTALL/Lang"
cp "$BIN/TavrinEUI.dll" "$BIN/tavrine-com-demo.exe" "$INSTALL/"
cp "$ROOT"/data/Lang/*.ini "$INSTALL/Lang/"
wineboot -i >/dev/null 2>&1
wineserver -w
wine reg add 'HKCU\Control Panel\Desktop' /v LogPixels /t REG_DWORD /d 144 /f >/dev/null
wine reg add 'HKLM\System\CurrentControlSet\Hardware Profiles\Current\Software\Fonts' /v LogPixels /t REG_DWORD /d 144 /f >/dev/null
wine regsvr32 /s "$(winpath "$INSTALL/TavrinEUI.dll")"
for language in English German; do
  printf '%s\r\n' "[ProductInfo]" "ProductNumber=7" "ProductName=TavrinE" "ProductInstallationName=TavrinEDpi" \
    "Language=$language" "ProductCaption=TavrinE Online Backup" "[ConnectionInfo]" "DomainName=localhost" \
    >"$INSTALL/Configuration.ini"
  png=$OUT/login_150_$([[ $language == German ]] && echo de || echo en).png
  (cd "$INSTALL" && timeout 120 "$ROOT/tests/dialogs/win32/run_with_display.sh" \
     wine explorer /desktop=Dpi,1280x1024 tavrine-com-demo.exe screenshot-login "$(winpath "$png")" >/dev/null 2>&1) || true
  if [[ -s $png ]]; then echo "$png"; else echo "no screenshot for $language" >&2; exit 1; fi
done
