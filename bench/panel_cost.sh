#!/usr/bin/env bash
# What Quillmont costs while it runs: CPU time a minute with the panel hidden and shown, of the
# program itself and of the tools that it starts. On a desktop in memory, with folders of its own;
# the images are those that are attached.
#
# usage: panel_cost.sh BUILD_FOLDER [SECONDS]
set -euo pipefail
build=$(realpath "$1")
seconds=${2:-20}
here=$(dirname "$(realpath "${BASH_SOURCE[0]}")")
running=()
work=$(mktemp -d /tmp/quillmont-cost.XXXXXX)
trap 'exit 130' INT TERM
trap clean_up EXIT
# shellcheck source=demo/desktop.sh
. "$here/../demo/desktop.sh"

clean_up() {
  local pid
  for pid in "${running[@]}"; do kill "$pid" 2>/dev/null || true; done
  rm -rf "$work"
}

# spent PID: clock ticks of CPU time of the program, and of its children that have ended.
spent() {
  sed 's/.*) //' "/proc/$1/stat" | awk '{ print $12 + $13, $14 + $15 }'
}

# measure PID WHAT: a row of the table.
measure() {
  local before after
  read -ra before < <(spent "$1")
  sleep "$seconds"
  read -ra after < <(spent "$1")
  awk -v what="$2" -v own=$((after[0] - before[0])) -v tools=$((after[1] - before[1])) \
    -v perMinute="$(awk -v s="$seconds" -v t="$(getconf CLK_TCK)" 'BEGIN { print 60000 / s / t }')" \
    'BEGIN { printf "%-14s %8.0f ms %8.0f ms\n", what, own * perMinute, tools * perMinute }'
}

mkdir -m 700 "$work/home" "$work/runtime"
export HOME=$work/home XDG_RUNTIME_DIR=$work/runtime XDG_CONFIG_HOME= XDG_DATA_HOME=
unset DBUS_SESSION_BUS_ADDRESS WAYLAND_DISPLAY
start_desktop
"$build/Quillmont/Contents/MacOS/Quillmont" 2>"$work/log" &
program=$!
running+=("$program")
open_panel "$program" || {
  echo "panel_cost: the panel does not open: $(<"$work/log")" >&2
  exit 1
}
sleep 2
printf '%-14s %11s %11s   CPU time a minute, measured for %s s\n' panel program tools "$seconds"
measure "$program" shown
xdotool mousemove 100 500 click 1
sleep 2
measure "$program" hidden
