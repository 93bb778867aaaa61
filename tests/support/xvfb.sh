#!/bin/bash
# A virtual X display for the window tests.
#   xvfb.sh start DIR DISPLAY  starts Xvfb on DISPLAY (":97"), or on the next free display when
#                              that one is taken, 1280×1024 in true colour, no TCP; writes the
#                              display it got to DIR/display
#   xvfb.sh stop DIR           stops it and waits for it to exit
set -euo pipefail

usage() { echo "usage: $0 start DIR DISPLAY | stop DIR" >&2; exit 2; }

stop_server() {
  local dir=$1
  if [[ -f "$dir/xvfb.pid" ]]; then
    local pid
    pid=$(cat "$dir/xvfb.pid")
    if kill -0 "$pid" 2>/dev/null; then
      kill -TERM "$pid"
      for _ in $(seq 50); do kill -0 "$pid" 2>/dev/null || break; sleep 0.1; done
      kill -0 "$pid" 2>/dev/null && kill -KILL "$pid"
    fi
  fi
  rm -f "$dir/xvfb.pid" "$dir/display"
}

start_server() {
  local dir=$1 number=${2#:}
  command -v Xvfb >/dev/null || { echo "$0: Xvfb is not installed (xvfb)" >&2; exit 1; }
  mkdir -p "$dir"
  stop_server "$dir"
  # A display is taken when its lock file names a live server.
  local tries
  for tries in $(seq 20); do
    local lock=/tmp/.X$number-lock
    if [[ -f "$lock" ]] && kill -0 "$(tr -d ' ' <"$lock")" 2>/dev/null; then
      number=$((number + 1))
      continue
    fi
    rm -f "$lock" "/tmp/.X11-unix/X$number"
    setsid Xvfb ":$number" -screen 0 1280x1024x24 -nolisten tcp -noreset \
      </dev/null >"$dir/xvfb.log" 2>&1 &
    echo $! >"$dir/xvfb.pid"
    for _ in $(seq 100); do
      if DISPLAY=":$number" xdpyinfo >/dev/null 2>&1; then
        echo ":$number" >"$dir/display"
        echo "Xvfb on :$number"
        return 0
      fi
      kill -0 "$(cat "$dir/xvfb.pid")" 2>/dev/null || break
      sleep 0.1
    done
    stop_server "$dir"
    number=$((number + 1))
  done
  echo "$0: Xvfb did not start after $tries tries" >&2
  cat "$dir/xvfb.log" >&2 || true
  exit 1
}

case "${1:-}" in
  start) [[ $# -eq 3 ]] || usage; start_server "$2" "$3" ;;
  stop) [[ $# -eq 2 ]] || usage; stop_server "$2" ;;
  *) usage ;;
esac
