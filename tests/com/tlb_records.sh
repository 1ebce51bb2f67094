#!/bin/sh
# Compares the record layouts stored in a type library file with a golden
# list: "record <index> align <n> size <n> fields <offset>...". Read from the
# file, not through a loaded type library: a 64-bit process recomputes a
# 32-bit library's records for its own pointer size.
# usage: tlb_records.sh WINEDUMP FILE.tlb GOLDEN
set -u
actual=$("$1" dump "$2" | awk '
  function hex(text,   i, n) {
    n = 0
    for (i = 1; i <= length(text); i++) n = n * 16 + index("0123456789abcdef", tolower(substr(text, i, 1))) - 1
    return n
  }
  /^TypeInfoBase [0-9]+ \{/ { base = $2; next }
  /^TypeInfo [0-9]+ \{/ { base = ""; info = $2; next }
  base != "" && /typekind = TKIND_RECORD/ { split($0, a, "align = "); align[base] = a[2]; record[base] = 1 }
  base != "" && /^    size = / { size[base] = $3 }
  base == "" && /OffsValue = / { v = $3; sub(/h$/, "", v); fields[info] = fields[info] " " hex(v) }
  END { for (i = 0; i in size; i++) if (record[i]) print "record " i " align " align[i] " size " size[i] " fields" fields[i] }')
expected=$(grep -v '^#' "$3")
if [ "$actual" = "$expected" ]; then
  echo "record layouts as expected"
  exit 0
fi
echo "record layouts differ; expected:"; echo "$expected"; echo "actual:"; echo "$actual"
exit 1
