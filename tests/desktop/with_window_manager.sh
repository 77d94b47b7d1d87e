#!/bin/sh
# Runs a command on a private X server whose windows openbox manages, so
# the window manager's lists, focus and minimising are real.
exec xvfb-run -a -s "-screen 0 1024x768x24" sh -c '
  openbox --sm-disable >/dev/null 2>&1 &
  manager=$!
  "$@"
  status=$?
  kill "$manager" 2>/dev/null
  exit "$status"' sh "$@"
