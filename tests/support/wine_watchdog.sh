#!/usr/bin/env bash
# Runs a test command that starts Windows programs under Wine, with a
# watchdog: when the command has not ended after TAVRINE_HANG_SECONDS (default
# 300), the stacks of every thread of its program and of the Wine processes
# that program started are printed, named from the symbols of the programs
# beside it, and then the command and everything it started are killed.
# ctest's own TIMEOUT is a little longer, so a hang fails with its stacks in
# the log instead of a bare "Timeout".
#   wine_watchdog.sh <command that runs wine> ...
# The program is the command's first *.exe argument, else the one after the
# wine launcher (regsvr32, cscript, ...); a script that runs several programs
# names their folder in TAVRINE_HANG_BIN_DIR and every program there counts.
set -u
limit=${TAVRINE_HANG_SECONDS:-300}

program=
after_wine=0
for arg in "$@"; do
  if [[ ${arg,,} == *.exe ]]; then program=$arg; break; fi
  if ((after_wine)) && [[ -z $program ]]; then program=$arg; fi
  [[ $(basename -- "$arg") == wine || $(basename -- "$arg") == wine64 ]] && after_wine=1
done

# A test with a Wine prefix of its own (another registry, another wineserver)
# runs beside the tests of the usual one; the prefix is made on first use.
if [[ -n ${TAVRINE_WINE_PREFIX_SLOT:-} ]]; then
  export WINEPREFIX="${WINEPREFIX:-$HOME/.wine}-$TAVRINE_WINE_PREFIX_SLOT"
  if [[ ! -f $WINEPREFIX/system.reg ]]; then
    mkdir -p "$WINEPREFIX"
    flock "$WINEPREFIX/.making" bash -c '[[ -f $WINEPREFIX/system.reg ]] || wineboot -i' \
      >/dev/null 2>&1
  fi
fi

"$@" &
command_pid=$!
sleep "$limit" &
timer_pid=$!
wait -n -p ended "$command_pid" "$timer_pid"
status=$?
if [[ ${ended:-} == "$command_pid" ]]; then
  kill "$timer_pid" 2>/dev/null
  wait "$timer_pid" 2>/dev/null
  exit "$status"
fi

# Program names as Wine lists them: lower case, no ".exe".
names=()
bin_dir=${TAVRINE_HANG_BIN_DIR:-}
if [[ -n $bin_dir ]]; then
  for file in "$bin_dir"/*.exe; do [[ -f $file ]] && names+=("$(basename -- "$file")"); done
else
  names+=("$(basename -- "${program:-?}")")
  bin_dir=$(dirname -- "${program:-.}")
fi
names=("${names[@],,}")
names=("${names[@]%.exe}")
winedbg_run() { timeout 60 winedbg "$@" 2>&1 | tr -d '\r'; }
scratch=$(mktemp -d)
script=$scratch/commands
trap 'rm -rf "$scratch"' EXIT

echo "=== HANG: ${names[*]} still running after $limit s; its stacks, then it is killed ===" >&2

# The programs' Wine pids and those of the processes below them in the tree.
pids=$(winedbg_run --command "info proc" | awk -v names="${names[*]}" '
  BEGIN { n = split(names, list, " "); for (i = 1; i <= n; ++i) wanted[list[i]] = 1 }
  { pid = $1; sub(/^=/, "", pid)
    exe = $0; sub(/^[^\047]*\047/, "", exe); sub(/\047.*$/, "", exe)
    exe = tolower(exe); sub(/\.exe$/, "", exe)
    depth = index($0, "\\_") }
  found && depth > found_depth { print pid; next }
  { found = 0 }
  exe in wanted { print pid; found = 1; found_depth = depth }')
[[ -n $pids ]] || echo "no Wine process named ${names[*]}" >&2

# Frames of the test's own modules come as "in <module> (+0x<offset>)": the
# nearest symbol below that address in the module's file names the function.
symbolise() {
  local line module offset file base address symbol symbols
  while IFS= read -r line; do
    if [[ $line =~ \ in\ ([A-Za-z0-9_.-]+)\ \(\+0x([0-9a-fA-F]+)\) ]]; then
      module=${BASH_REMATCH[1]} offset=${BASH_REMATCH[2]}
      file=
      for candidate in "$bin_dir/$module.exe" "$bin_dir/$module.dll" "$bin_dir/$module"; do
        [[ -f $candidate ]] && { file=$candidate; break; }
      done
      if [[ -n $file ]]; then
        symbols="$scratch/$module.symbols"
        if [[ ! -f $symbols ]]; then
          x86_64-w64-mingw32-objdump -p "$file" 2>/dev/null |
            awk '$1 == "ImageBase" { print $2 }' >"$scratch/$module.base"
          x86_64-w64-mingw32-nm -C -n --defined-only "$file" >"$symbols" 2>/dev/null
        fi
        base=$(<"$scratch/$module.base")
        address=$(printf '%016x' $((0x${base:-0} + 0x$offset)))
        # nm -n lists by address as 16 hex digits, so text order is address order.
        symbol=$(awk -v a="$address" '$1 "" > a "" { exit } { s = $0 }
                   END { sub(/^[0-9a-f]+ [A-Za-z] /, "", s); print s }' "$symbols")
        [[ -n $symbol ]] && line="$line  <$symbol>"
      fi
    fi
    printf '%s\n' "$line"
  done
}

for pid in $pids; do
  threads=$(winedbg_run --command "info thread" | awk -v pid="$pid" '
    /^[0-9a-f]+ / { inside = ($1 == pid) ; next }
    inside && /^[ \t]+[0-9a-f]+/ { print $1 }')
  {
    echo "attach 0x$pid"
    for thread in $threads; do echo "bt 0x$thread"; done
    echo "detach"
  } >"$script"
  echo "--- process 0x$pid, threads: $(echo $threads) ---" >&2
  winedbg_run --file "$script" | symbolise >&2
done

# Everything the command started, children first; the wineserver that one of
# them may have started serves the other tests too and stays.
descendants() {
  local child
  for child in $(ps -o pid= --ppid "$1"); do
    descendants "$child"
    [[ $(ps -o comm= -p "$child") == wineserver ]] || echo "$child"
  done
}
kill "$timer_pid" 2>/dev/null
kill -KILL $(descendants "$command_pid") "$command_pid" 2>/dev/null
wait "$command_pid" 2>/dev/null
echo "=== HANG: killed after $limit s ===" >&2
exit 124
