#!/usr/bin/env bash
# Runs every sample of the integrator's guide against the registered DLL and
# the reference engine in vault mode, under Wine. One line per sample:
# "SAMPLE <name> ok|FAILED <why>"; exit 0 when every sample did what its page
# says.
#
#   run_samples.sh WIN-BIN-DIR SAMPLES-BIN-DIR WORK-DIR
#
# WIN-BIN-DIR holds TavrinEUI.dll and the engine programs; SAMPLES-BIN-DIR the
# compiled samples. WINEPREFIX comes from the caller; the DLL is registered
# for the run and unregistered after it, and the profile key of the run's own
# installation name is removed before and after.
set -uo pipefail
HERE=$(cd "$(dirname "$0")" && pwd)
ROOT=$(cd "$HERE/../../.." && pwd)
[[ $# -eq 3 ]] || { echo "usage: $0 WIN-BIN-DIR SAMPLES-BIN-DIR WORK-DIR" >&2; exit 1; }
BIN=$(cd "$1" && pwd)
SAMPLES=$(cd "$2" && pwd)
WORK=$3
export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
WINE=${TAVRINE_WINE:-wine}
NAME=TavrinEDocsSamples
PROFILE_KEY="HKCU\\Software\\Brennick\\$NAME"

winpath() { local p; p=$(cd "$(dirname "$1")" && pwd)/$(basename "$1"); p=${p//\//\\}; printf 'Z:%s' "$p"; }

status=0
verdict() {  # NAME OK(0/1) WHY
  if [[ $2 -eq 0 ]]; then echo "SAMPLE $1 ok $3"; else echo "SAMPLE $1 FAILED $3"; status=1; fi
}
OUT=
RC=0
# Runs a sample from the install folder without a display (boxes return at once).
run() {
  echo "\$ $*"
  local raw
  raw=$(cd "$INSTALL" && env -u DISPLAY "$WINE" "$@" 2>&1; printf '\n%s' "$?")
  RC=${raw##*$'\n'}
  OUT=$(tr -d '\r' <<<"${raw%$'\n'*}")
  [[ -n $OUT ]] && sed 's/^/    /' <<<"$OUT"
  return 0
}

rm -rf "$WORK"
INSTALL=$WORK/install
mkdir -p "$INSTALL/Lang" "$WORK/local"
WORK=$(cd "$WORK" && pwd)
INSTALL=$WORK/install
for f in TavrinEUI.dll TavrinEClient.exe TavrinECompareList.exe; do
  cp "$BIN/$f" "$INSTALL/" || { echo "missing $BIN/$f" >&2; exit 1; }
done
cp "$INSTALL/TavrinEClient.exe" "$INSTALL/TavrinEClsClient.exe"
cp "$ROOT"/data/Lang/*.ini "$INSTALL/Lang/"
for f in login_silent login_dialog quota tree versions restore delete backup firewall late_bound; do
  cp "$SAMPLES/$f.exe" "$INSTALL/" || { echo "missing $SAMPLES/$f.exe" >&2; exit 1; }
done
cp "$HERE/script.vbs" "$INSTALL/"
printf '%s\r\n' "[ProductInfo]" "ProductNumber=7" "ProductName=TavrinE" "ProductInstallationName=$NAME" \
  "ProductTreeViewName=TavrinE Backup" "Language=English" "ProductCaption=TavrinE Online Backup" "ExeGroup=TavrinE" \
  "[ConnectionInfo]" "DomainName=localhost" "IPAddress1=127.0.0.1" "Port=443" "EngineTimeoutSeconds=120" \
  >"$INSTALL/Configuration.ini"
"$WINE" reg delete "$PROFILE_KEY" /f >/dev/null 2>&1
(cd "$INSTALL" && "$WINE" TavrinEClient.exe --make-sample-vault vault >/dev/null) && [[ -f $INSTALL/vault/vault.txt ]]
verdict vault $? "the sample vault beside the engine"
DLL=$(winpath "$INSTALL/TavrinEUI.dll")
"$WINE" regsvr32 /s "$DLL"
verdict register $? "regsvr32 $DLL"
ANNA=$INSTALL/vault/accounts/anna/computers

# --- log in silently: a wrong password first, then the right one ----------
run login_silent.exe anna not-annas-password anna-key-2024
[[ $RC -eq 1 && $OUT == *"(-403)"* ]]
verdict login_silent_refused $? "a wrong password: exit $RC"
run login_silent.exe anna anna-pass anna-key-2024
[[ $RC -eq 0 && $OUT == *"logged in as anna"* ]]
verdict login_silent $? "exit $RC"

# --- read the quota: every stored version counts ----------------------------
stored=$(find "$ANNA" -type f -name '=[0-9]*' -printf '%s\n' | awk '{ s += $1 } END { print s + 0 }')
run quota.exe
[[ $RC -eq 0 && $OUT == *"quota: used $stored of 2147483648 bytes, free plan"* ]]
verdict quota $? "exit $RC, the vault holds $stored bytes"

# --- list and walk the tree ---------------------------------------------------
run tree.exe
[[ $RC -eq 0 && $OUT == *"tree: 2 top folder(s), 10 folders, 6 files"* ]]
verdict tree $? "exit $RC"

# --- versions -----------------------------------------------------------------
REPORT='HOMEPC\C:\Documents\Reports\2023\Q1 report.txt'
run versions.exe "$REPORT"
[[ $RC -eq 0 && $OUT == *"versions: 3 of $REPORT"* && $OUT == *"v3  $(stat -c %s "$ANNA/HOMEPC/C%3A/Documents/Reports/2023/Q1 report.txt/=3") bytes"* ]]
verdict versions $? "exit $RC"

# --- restore: the bytes of the latest version ---------------------------------
run restore.exe 'HOMEPC\C:\Documents\Reports' "$(winpath "$WORK/restored")" "$(winpath "$WORK/exchange-restore")"
cmp -s "$WORK/restored/Reports/2023/Q1 report.txt" "$ANNA/HOMEPC/C%3A/Documents/Reports/2023/Q1 report.txt/=3"
same=$?
[[ $RC -eq 0 && $same -eq 0 ]]
verdict restore $? "exit $RC, restored bytes $([[ $same -eq 0 ]] && echo match || echo DIFFER)"

# --- delete -------------------------------------------------------------------
MUSIC="$ANNA/HOMEPC/D%3A/Music/Café del Mar.txt"
[[ -d $MUSIC ]]
before=$?
run delete.exe "$(winpath "$WORK/InputDelete.txt")" 'HOMEPC\D:\Music\Café del Mar.txt'
[[ $RC -eq 0 && $before -eq 0 && ! -e $MUSIC ]]
verdict delete $? "exit $RC, gone from the vault: $([[ -e $MUSIC ]] && echo no || echo yes)"

# --- back up with a scheduled backup running ----------------------------------
# The scheduler is played by hand: its scheduleData.txt says run 4711 is going on.
ACCOUNT_FOLDER=$INSTALL/${NAME}anna
mkdir -p "$ACCOUNT_FOLDER"
printf '4711\r\nnightly backup 02:00\r\n' >"$ACCOUNT_FOLDER/scheduleData.txt"
printf 'notes, first draft\r\n' >"$WORK/local/notes.txt"
run backup.exe "$(winpath "$WORK/exchange-backup")" "$(winpath "$WORK/local/notes.txt")"
stored_notes=$(find "$ANNA/HOMEPC" -path '*notes.txt/=1' | head -n 1)
[[ $RC -eq 0 && $OUT == *"scheduled backup running before: yes"* && $OUT == *"backup: uploaded"* &&
   ! -e $ACCOUNT_FOLDER/schedulerStatus.txt && -n $stored_notes ]] && cmp -s "$stored_notes" "$WORK/local/notes.txt"
verdict backup $? "exit $RC, stored as ${stored_notes#"$ANNA/"}, pause request $([[ -e $ACCOUNT_FOLDER/schedulerStatus.txt ]] && echo LEFT || echo removed)"
rm -f "$ACCOUNT_FOLDER/scheduleData.txt"

# --- firewall probe -----------------------------------------------------------
run firewall.exe
[[ $RC -eq 0 && $OUT == *"the engine got through"* ]]
verdict firewall $? "exit $RC"

# --- calling: late-bound C++ and VBScript -------------------------------------
run late_bound.exe
[[ $RC -eq 0 && $OUT == *'W_GetMessageString(-424) -> 1 "Operation cancelled by the user"'* ]]
verdict late_bound $? "exit $RC"
run cscript //nologo script.vbs "$REPORT"
[[ $RC -eq 0 && $OUT == *"script: done"* ]]
verdict script_vbs $? "exit $RC"

# --- log in with the dialog: shown, then Escape --------------------------------
echo "\$ login_dialog.exe --press-escape   (on a display of its own)"
OUT=$(cd "$INSTALL" && timeout 120 "$ROOT/tests/dialogs/win32/run_with_display.sh" \
        "$WINE" explorer /desktop=TavrinEDocs,1024x768 login_dialog.exe --press-escape 2>&1 | tr -d '\r')
[[ -n $OUT ]] && sed 's/^/    /' <<<"$OUT"
[[ $OUT == *"login_dialog: not logged in:"* ]]
verdict login_dialog $? "the dialog was shown and closed with Escape"

"$WINE" regsvr32 /u /s "$DLL"
verdict unregister $? "regsvr32 /u $DLL"
"$WINE" reg delete "$PROFILE_KEY" /f >/dev/null 2>&1
exit "$status"
