#!/usr/bin/env bash
# The demo's story with the command-line client against a fresh sample vault:
# log in, quota, browse, versions, restore (bytes checked against the vault),
# delete (and gone), back up a file twice (new version, restored back); with
# the engine programs taken away, the failures name them.
# Prints every command with its output and one "STEP <name> ok|FAILED ..."
# line per step; exit 0 when every step passed.
#
#   cli_story.sh NATIVE-BIN-DIR WORK-DIR
set -uo pipefail
[[ $# -eq 2 ]] || { echo "usage: $0 NATIVE-BIN-DIR WORK-DIR" >&2; exit 1; }
BIN=$(cd "$1" && pwd)
mkdir -p "$2" && WORK=$(cd "$2" && pwd)
INSTALL=$WORK/install
VAULT=$INSTALL/vault
ANNA=$VAULT/accounts/anna/computers

status=0
step() {  # NAME OK-CONDITION-RESULT FIGURES
  if [[ $2 -eq 0 ]]; then echo "STEP $1 ok $3"; else echo "STEP $1 FAILED $3"; status=1; fi
}
# Runs tavrine, shows the command and its output; OUT and RC keep them.
shown() { local a out=(); for a in "$@"; do [[ $a =~ ^[A-Za-z0-9_./=:-]+$ ]] && out+=("$a") || out+=("'$a'"); done; echo "${out[*]}"; }
tv() {
  echo "\$ tavrine $(shown "$@")"
  OUT=$("$INSTALL/tavrine" "$@" 2>&1)
  RC=$?
  [[ -n $OUT ]] && sed 's/^/    /' <<<"$OUT"
  return 0
}
# Version n of a sample text file: n lines "<path> version n line i" CR LF.
sample_text() { local i; for ((i = 1; i <= $2; i++)); do printf '%s version %d line %d\r\n' "$1" "$2" "$i"; done; }
all() { local c; for c in "$@"; do [[ $c == 0 ]] || return 1; done; }

# A fresh install folder: the engine under both names, the compare program,
# the client, Configuration.ini; the vault beside the engine.
rm -rf "$INSTALL" "$WORK/local" "$WORK/restored" "$WORK/restored-notes"
mkdir -p "$INSTALL" "$WORK/local"
for f in TavrinEClient.exe TavrinECompareList.exe tavrine; do
  cp "$BIN/$f" "$INSTALL/" || { echo "missing $BIN/$f" >&2; exit 1; }
done
cp "$INSTALL/TavrinEClient.exe" "$INSTALL/TavrinEClsClient.exe"
printf '%s\r\n' "[ProductInfo]" "ProductNumber=7" "ProductName=TavrinE" "ProductInstallationName=TavrinE" \
  "ProductTreeViewName=TavrinE Backup" "Language=English" "ProductCaption=TavrinE Online Backup" "ExeGroup=TavrinE" \
  "[ConnectionInfo]" "DomainName=localhost" "IPAddress1=127.0.0.1" "Port=443" "EngineTimeoutSeconds=120" \
  >"$INSTALL/Configuration.ini"
echo "\$ TavrinEClient.exe --make-sample-vault vault"
"$INSTALL/TavrinEClient.exe" --make-sample-vault "$VAULT"
step vault $? "anna (HOMEPC, WORKPC), ben, dora"

# --- log in ------------------------------------------------------------------
tv login anna --password wrong-pass --key anna-key-2024
wrong_rc=$RC
tv login anna --password anna-pass --key anna-key-2024
login_rc=$RC
tv whoami
all "$((wrong_rc != 0 ? 0 : 1))" "$login_rc" "$RC" && [[ $OUT == anna ]]
step login $? "anna logged in (a wrong password refused: exit $wrong_rc)"

# --- quota: every stored version counts -------------------------------------
tv quota
stored=$(find "$ANNA" -type f -name '=[0-9]*' -printf '%s\n' | awk '{ s += $1 } END { print s + 0 }')
used=$(sed -n 's/^Used .*(\([0-9]*\) bytes.*/\1/p' <<<"$OUT")
quota=$(sed -n 's/^Quota .*(\([0-9]*\) bytes.*/\1/p' <<<"$OUT")
[[ $RC -eq 0 && $used == "$stored" && $quota == 2147483648 ]]
step quota $? "used $used of $quota bytes (vault holds $stored)"

# --- browse ------------------------------------------------------------------
tv ls
top=$(tr '\n' ' ' <<<"$OUT")
ls_rc=$RC
tv ls 'HOMEPC\C:\Documents'
doc_rc=$RC
tv tree
counts=$(tail -n 1 <<<"$OUT")
all "$ls_rc" "$doc_rc" "$RC" && [[ $top == "HOMEPC WORKPC " && $counts == "10 folders, 6 files" ]]
step browse $? "${top% }: $counts"

# --- versions ----------------------------------------------------------------
REPORT='C:\Documents\Reports\2023\Q1 report.txt'
REPORT_NODE="$ANNA/HOMEPC/C%3A/Documents/Reports/2023/Q1 report.txt"
tv versions "HOMEPC\\$REPORT"
listed=$(grep -cE '^ +[0-9]+  ' <<<"$OUT")
newest=$(grep -E '^ +[0-9]+  ' <<<"$OUT" | head -n 1 | awk '{ print $1 }')
[[ $RC -eq 0 && $listed -eq 3 && $newest == 3 ]]
step versions $? "$listed versions of Q1 report.txt, newest v$newest ($(stat -c %s "$REPORT_NODE/=3") bytes)"

# --- restore: the latest version's bytes, as the vault holds them -----------
tv restore 'HOMEPC\C:\Documents\Reports' --to "$WORK/restored"
restored="$WORK/restored/Reports/2023/Q1 report.txt"
files=$(find "$WORK/restored" -type f | wc -l)
cmp -s "$restored" "$REPORT_NODE/=3"; same_vault=$?
cmp -s "$restored" <(sample_text "$REPORT" 3); same_text=$?
echo "    restored: $files file(s); Q1 report.txt $(stat -c %s "$restored" 2>/dev/null || echo 0) bytes;" \
     "vs vault: $([[ $same_vault == 0 ]] && echo same || echo DIFFERENT);" \
     "vs expected text: $([[ $same_text == 0 ]] && echo same || echo DIFFERENT)"
all "$RC" "$same_vault" "$same_text" && [[ $files -eq 1 ]]
step restore $? "1 folder -> $files file, $(stat -c %s "$restored" 2>/dev/null || echo 0) bytes, $([[ $same_vault == 0 && $same_text == 0 ]] && echo "bytes match" || echo "bytes DIFFER")"

# --- delete ------------------------------------------------------------------
DELETED='HOMEPC\D:\Music\Café del Mar.txt'
tv rm "$DELETED"
rm_rc=$RC
tv tree 'HOMEPC\D:'
! grep -q 'Café del Mar' <<<"$OUT"; gone_listing=$?
[[ ! -e "$ANNA/HOMEPC/D%3A/Music/Café del Mar.txt" ]]; gone_vault=$?
all "$rm_rc" "$gone_listing" "$gone_vault"
step delete $? "Café del Mar.txt $([[ $gone_listing == 0 && $gone_vault == 0 ]] && echo "gone from the listing and the vault" || echo "still there")"

# --- back up a file, change it, back it up again ------------------------------
LOCAL="$WORK/local/notes.txt"
REMOTE="HOMEPC\\${LOCAL//\//\\}"   # a POSIX path: the empty top name follows the computer
printf 'notes, first draft\r\n' >"$LOCAL"
tv backup "$LOCAL"
first_rc=$RC
printf 'notes, a line added later\r\n' >>"$LOCAL"
tv backup "$LOCAL"
second_rc=$RC
tv backup "$LOCAL"
[[ $OUT == *"Nothing to back up"* ]]; unchanged=$?
tv versions "$REMOTE"
versions_rc=$RC
listed=$(grep -cE '^ +[0-9]+  ' <<<"$OUT")
newest=$(grep -E '^ +[0-9]+  ' <<<"$OUT" | head -n 1 | awk '{ print $1 }')
tv restore "$REMOTE" --to "$WORK/restored-notes"
cmp -s "$WORK/restored-notes/notes.txt" "$LOCAL"; round_trip=$?
echo "    restored notes.txt: $([[ $round_trip == 0 ]] && echo "the changed file's bytes" || echo "DIFFERENT bytes")"
all "$first_rc" "$second_rc" "$unchanged" "$versions_rc" "$RC" "$round_trip" && [[ $listed -eq 2 && $newest == 2 ]]
step backup $? "notes.txt now v$newest ($(stat -c %s "$LOCAL") bytes), unchanged file skipped, restored bytes $([[ $round_trip == 0 ]] && echo match || echo DIFFER)"

# --- message texts -------------------------------------------------------------
tv message -404
[[ $RC -eq 0 && -n $OUT ]]
step messages $? "-404: ${OUT#\[*\] }"

# --- an install without its engine: the failure names the program and the place
mkdir -p "$WORK/engines-away"
mv "$INSTALL/TavrinEClient.exe" "$INSTALL/TavrinEClsClient.exe" "$WORK/engines-away/"
tv quota
quota_rc=$RC quota_out=$OUT
tv ls
all "$((quota_rc == 2 ? 0 : 1))" "$((RC == 2 ? 0 : 1))" &&
  [[ $quota_out == "error: the engine program TavrinEClsClient.exe could not be started: it is not in $INSTALL (looked for $INSTALL/TavrinEClsClient.exe)" &&
     $OUT == "error: the engine program TavrinEClsClient.exe could not be started: it is not in $INSTALL (looked for $INSTALL/TavrinEClsClient.exe)"$'\n'"error: the engine program TavrinEClient.exe could not be started: it is not in $INSTALL (looked for $INSTALL/TavrinEClient.exe)" ]]
step engine-missing $? "quota and ls name the missing program and the folder"
mv "$WORK/engines-away/"* "$INSTALL/"

exit "$status"
