#!/usr/bin/env bash
# Runs a command with an X display: the caller's, or a private Xvfb that ends with it.
set -u
if [[ -z "${DISPLAY:-}" ]]; then
  display=
  for n in $(seq 91 160); do
    if [[ ! -e /tmp/.X$n-lock && ! -e /tmp/.X11-unix/X$n ]]; then display=":$n"; break; fi
  done
  [[ -n $display ]] || { echo "no free X display" >&2; exit 1; }
  Xvfb "$display" -screen 0 1280x1024x24 -nolisten tcp >/dev/null 2>&1 &
  xvfb_pid=$!
  trap 'kill "$xvfb_pid" 2>/dev/null; wait "$xvfb_pid" 2>/dev/null' EXIT
  for _ in $(seq 100); do [[ -e /tmp/.X11-unix/X${display#:} ]] && break; sleep 0.1; done
  export DISPLAY=$display
fi
"$@"
