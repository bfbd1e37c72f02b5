#!/usr/bin/env bash
# What the whole program costs beside the least that a program with a tray icon can be: the start,
# memory, CPU time a minute. On a desktop in memory, with folders of its own and ten small images
# attached, where this user may attach any.
#
# usage: program_cost.sh BUILD_FOLDER [SECONDS]
set -euo pipefail
build=$(realpath "$1")
seconds=${2:-30}
images=10
here=$(dirname "$(realpath "${BASH_SOURCE[0]}")")
quillmont=$build/Quillmont/Contents/MacOS/Quillmont
hdiutil=$build/Quillmont/Contents/libexec/hdiutil
control=$build/bench/quillmont_tray_control
running=()
attached=()
work=$(mktemp -d /tmp/quillmont-cost.XXXXXX)
trap 'exit 130' INT TERM
trap clean_up EXIT
# shellcheck source=demo/desktop.sh
. "$here/../demo/desktop.sh"

clean_up() {
  local pid place
  for pid in "${running[@]}"; do kill "$pid" 2>/dev/null || true; done
  for place in ${attached[@]+"${attached[@]}"}; do "$hdiutil" detach "$place" -force >/dev/null 2>&1 || true; done
  rm -rf "$work"
}

# Their mount points, as the system has them, go into "attached".
attach_images() {
  local number image
  for ((number = 1; number <= images; ++number)); do
    image=$work/image$number.img
    truncate -s 4M "$image"
    /sbin/mkfs.ext4 -q -L "bench$number" "$image"
    "$hdiutil" attach "$image" >"$work/answer" 2>&1 || return 0
    attached+=("$(findmnt -rn -o TARGET --source "$(awk 'END { print $1 }' "$work/answer")")")
  done
}

# gather_processes COUNT: what looking through all processes costs goes by their number. There are to be as many as
# that in the whole system.
gather_processes() {
  local missing=$(($1 - $(find /proc -maxdepth 1 -name '[0-9]*' | wc -l)))
  for (( ; missing > 0; --missing)); do
    sleep infinity &
    running+=($!)
  done
}

# own PID: nanoseconds of CPU time of the program's threads.
own() { cat /proc/"$1"/task/*/schedstat | awk '{ sum += $1 } END { printf "%.0f\n", sum }'; }

# ended PID: the same of its children that have ended.
ended() {
  sed 's/.*) //' "/proc/$1/stat" | awk -v tick="$(getconf CLK_TCK)" '{ printf "%.0f\n", ($14 + $15) * 1e9 / tick }'
}

pss() { awk '/^Pss:/ { print $2 }' "/proc/$1/smaps_rollup"; }

# starts CLASS PROGRAM [ARGUMENT...]: into "pid"; waits until its icon, of that window class, is in the tray.
starts() {
  local ticks=100 class=$1
  shift
  "$@" 2>"$work/log" &
  pid=$!
  running+=("$pid")
  until xdotool search --onlyvisible --class "$class" >/dev/null 2>&1; do
    [ $((ticks--)) -gt 0 ] || {
      echo "program_cost: no icon of $1: $(<"$work/log")" >&2
      exit 1
    }
    sleep 0.05
  done
}

ends() {
  local ticks=100
  kill "$1" 2>/dev/null || true
  wait "$1" 2>/dev/null || true
  while xdotool search --onlyvisible --class "$2" >/dev/null 2>&1 && [ $((ticks--)) -gt 0 ]; do sleep 0.05; done
  sleep 0.3
}

# row WHAT MEASURED COMPARED UNIT RULE TARGET: RULE is ratio or difference.
row() {
  awk -v what="$1" -v a="$2" -v b="$3" -v unit="$4" -v rule="$5" -v target="$6" 'BEGIN {
    value = rule == "ratio" ? (b > 0 ? a / b : 0) : a - b
    printf "%-64s %9.1f %s %9.1f %s %7.3f %7.3f%s\n", what, a, unit, b, unit, value, target,
           (value > target ? "  missed" : "")
  }'
}

# startup_cost CLASS PROGRAM [ARGUMENT...]: the least of five, in milliseconds, into "cost".
startup_cost() {
  local class=$1 round spent
  shift
  cost=
  for round in 1 2 3 4 5; do
    starts "$class" "$@"
    sleep 0.3
    spent=$(own "$pid")
    ends "$pid" "$class"
    if [ "$round" = 1 ] || [ "$spent" -lt "$cost" ]; then cost=$spent; fi
  done
  cost=$(awk -v c="$cost" 'BEGIN { print c / 1e6 }')
}

# resting_cost PID: into "own_minute" and "tools_minute", milliseconds of CPU time a minute.
resting_cost() {
  local own_before tools_before
  own_before=$(own "$1")
  tools_before=$(ended "$1")
  sleep "$seconds"
  own_minute=$(awk -v d=$(($(own "$1") - own_before)) -v s="$seconds" 'BEGIN { print d * 60 / s / 1e6 }')
  tools_minute=$(awk -v d=$(($(ended "$1") - tools_before)) -v s="$seconds" 'BEGIN { print d * 60 / s / 1e6 }')
}

# What a minute of the same questions costs when the system's own tool answers them: into
# "system_minute", milliseconds. Not within $(...), whose shell has no part in what this one has
# waited for.
ask_system_tool() {
  local place before
  before=$(ended $$)
  for place in "${attached[@]}"; do
    # Its status is 1 also where nobody uses the volume.
    lsof -w -F cpn "$place" >/dev/null 2>"$work/errors" || [ ! -s "$work/errors" ] || {
      echo "program_cost: $(<"$work/errors")" >&2
      exit 1
    }
  done
  system_minute=$(awk -v d=$(($(ended $$) - before)) 'BEGIN { print d * 12 / 1e6 }')
}

# row_of_all PROCESSES: of the minute that was measured last.
row_of_all() {
  ask_system_tool
  row "all CPU a minute, $1 processes : the same questions to the system's" \
    "$(awk -v a="$own_minute" -v b="$tools_minute" 'BEGIN { print a + b }')" "$system_minute" ms ratio 0.1
}

mkdir -m 700 "$work/home" "$work/runtime"
export HOME=$work/home XDG_RUNTIME_DIR=$work/runtime XDG_CONFIG_HOME='' XDG_DATA_HOME=''
unset DBUS_SESSION_BUS_ADDRESS WAYLAND_DISPLAY
start_desktop
attach_images
gather_processes 90  # as on a small desktop
sleep 1

startup_cost quillmont_tray_control "$control"
start_of_control=$cost
startup_cost Quillmont "$quillmont"
row "start to icon in the tray, CPU : a bare tray icon" "$cost" "$start_of_control" ms ratio 1.5

starts quillmont_tray_control "$control" --timer
sleep 2
memory_of_control=$(pss "$pid")
resting_cost "$pid"
minute_of_control=$own_minute
ends "$pid" quillmont_tray_control

starts quillmont_tray_control "$control" --timer --starts $((${#attached[@]} + 1))
sleep 2
resting_cost "$pid"
minute_of_starts=$own_minute
ends "$pid" quillmont_tray_control

starts Quillmont "$quillmont"
sleep 8
row "memory (PSS), panel hidden, ${#attached[@]} images : the same" \
  "$(awk -v k="$(pss "$pid")" 'BEGIN { print k / 1024 }')" \
  "$(awk -v k="$memory_of_control" 'BEGIN { print k / 1024 }')" MiB difference 4
resting_cost "$pid"
row "own CPU a minute, panel hidden, ${#attached[@]} images : the same, a 1 Hz timer" \
  "$own_minute" "$minute_of_control" ms ratio 2
row "the same : the same, and as many bare starts of a program" "$own_minute" "$minute_of_starts" ms ratio 2
if [ ${#attached[@]} = $images ] && type -P lsof >/dev/null; then
  row_of_all 90
  gather_processes 1100
  resting_cost "$pid"
  row_of_all 1,100
else
  echo "all CPU a minute: skipped: ${#attached[@]} of $images images attached: $(head -n 1 "$work/answer")"
fi
open_panel "$pid"
sleep 2
hidden_minute=$own_minute
resting_cost "$pid"
row "own CPU a minute, panel shown : hidden" "$own_minute" "$hidden_minute" ms ratio 100
