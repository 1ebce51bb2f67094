#!/usr/bin/env bash
# Runs a command with an X display: the caller's, or a private Xvfb that ends with it.
set -u
if [[ -z "${DISPLAY:-}" ]]; then
  number_file=$(mktemp)
  # Xvfb picks a free display itself and writes its number once it accepts
  # connections: two tests starting at the same moment never share one.
  Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$number_file" >/dev/null 2>&1 &
  xvfb_pid=$!
  trap 'kill "$xvfb_pid" 2>/dev/null; wait "$xvfb_pid" 2>/dev/null; rm -f "$number_file"' EXIT
  for _ in $(seq 200); do [[ -s $number_file ]] && break; sleep 0.1; done
  [[ -s $number_file ]] || { echo "Xvfb did not start" >&2; exit 1; }
  export DISPLAY=":$(head -n 1 "$number_file")"
fi
"$@"
