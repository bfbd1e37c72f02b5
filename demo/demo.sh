#!/usr/bin/env bash
# Shows Quillmont at work: a real disk image comes into use, falls idle, is ejected after a few
# seconds and announced. Everything that it needs of a user (settings, runtime folder, message bus)
# is made for the occasion in one temporary folder, and goes with it.
#
# usage: demo.sh BUILD_FOLDER
set -euo pipefail
build=$(realpath "$1")
here=$(dirname "$(realpath "${BASH_SOURCE[0]}")")
work=$(mktemp -d "${TMPDIR:-/tmp}/quillmont-demo.XXXXXX")
bundle=$work/Quillmont
timeout_seconds=3
volume=假日照片
image="$work/$volume.img"

say() { printf '\n\033[1m%s\033[0m\n' "$*"; }

clean_up() {
  local status=$?
  trap - EXIT
  stop_running
  if "$hdiutil" info -plist 2>/dev/null | grep -q "<string>$image</string>"; then
    "$hdiutil" detach "/Volumes/$volume" -force || true
  fi
  rm -rf "$work"
  exit "$status"
}

running=()
stop_running() {
  local pid
  for pid in "${running[@]}"; do kill "$pid" 2>/dev/null || true; done
  for pid in "${running[@]}"; do wait "$pid" 2>/dev/null || true; done
  running=()
}

# wait_for SECONDS TEXT: until the program or the desktop has written it.
wait_for() {
  local ticks=$(($1 * 10))
  until grep -qF "$2" "$work/log"; do
    [ $((ticks--)) -gt 0 ] || {
      echo "demo: \"$2\" did not come within $1 seconds" >&2
      return 1
    }
    sleep 0.1
  done
}

# A session of the demo's own.
private_session() {
  mkdir -m 700 "$work/home" "$work/runtime"
  export HOME=$work/home XDG_RUNTIME_DIR=$work/runtime
  export XDG_CONFIG_HOME=$HOME/.config XDG_DATA_HOME=$HOME/.local/share
  unset DISPLAY WAYLAND_DISPLAY
  export DBUS_SESSION_BUS_ADDRESS=unix:path=$work/bus
  printf '<busconfig><type>session</type><listen>%s</listen><policy context="default"><allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/></policy></busconfig>' \
    "$DBUS_SESSION_BUS_ADDRESS" >"$work/bus.conf"
  dbus-daemon --config-file="$work/bus.conf" --nofork --nopidfile 2>/dev/null &
  running+=($!)
  local ticks=50
  until [ -S "$work/bus" ] || [ $((ticks--)) = 0 ]; do sleep 0.1; done
  "$build/demo/quillmont_notification_display" >>"$work/log" 2>&1 &
  running+=($!)
}

# Images that are attached already are somebody's own: the demo leaves them alone.
settings() {
  mkdir -p "$XDG_CONFIG_HOME/quillmont"
  cat >"$XDG_CONFIG_HOME/quillmont/com.norwaldex.Quillmont.plist" <<PLIST
<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict>
<key>com.norwaldex.quillmont.timeoutSeconds</key><real>$timeout_seconds</real>
<key>com.norwaldex.quillmont.excludeList</key><array>
$("$hdiutil" info -plist | grep -A 1 "<key>image-path</key>" | grep "<string>" || true)
</array></dict></plist>
PLIST
}

# A small ext4 image named in Chinese, attached; where that cannot be done, a simulated one.
attach_image() {
  local answer
  truncate -s 8M "$image"
  /sbin/mkfs.ext4 -q -L "$volume" -d "$1" "$image" 2>/dev/null
  if ! answer=$("$hdiutil" attach "$image" 2>&1); then
    say "This machine cannot attach disk images (${answer//$'\n'/ }): a simulated disk-image tool stands in."
    export QUILLMONT_SIMULATED_IMAGES=$work/simulated
    cp "$here"/simulated/* "$bundle/Contents/libexec/"
    answer=$("$hdiutil" attach "$image")
  fi
  echo "$answer"
  mount_point=$(sed -n 's/^[^\t]*\t//p' <<<"$answer" | head -n 1)
}

# Where the volume really is, for a process that wants to open a file on it.
real_folder() {
  local folder
  for folder in "${QUILLMONT_SIMULATED_IMAGES:-/nowhere}/$volume" \
    "/media/$(id -un)/$volume" "/run/media/$(id -un)/$volume"; do
    [ -d "$folder" ] && echo "$folder" && return
  done
}

cp -a "$build/Quillmont" "$bundle"
hdiutil=$bundle/Contents/libexec/hdiutil
touch "$work/log"
trap clean_up EXIT
private_session
settings

say "1. A disk image named $volume is attached; it is to be ejected after $timeout_seconds idle seconds."
mkdir "$work/content"
echo "海边的一天" >"$work/content/日记.txt"
attach_image "$work/content"

say "2. A process opens a file on it, and Quillmont starts."
tail -f "$(real_folder)/日记.txt" >/dev/null &
reader=$!
running+=("$reader")
"$bundle/Contents/MacOS/Quillmont" >>"$work/log" 2>&1 &
running+=($!)
program=$!
tail -n +1 -F --pid="$program" "$work/log" 2>/dev/null &
running+=($!)
wait_for 10 "Disk image is in use: $mount_point"
sleep 1

say "3. The file is closed: the image falls idle, is ejected, verified and announced."
kill "$reader"
wait_for 10 "Disk image is idle: $mount_point"
wait_for 10 "Successfully ejected and verified detached: $mount_point"
wait_for 5 "因空闲已自动推出"
sleep 0.5

say "4. Quillmont is asked to end."
kill -TERM "$program"
wait "$program"
if "$hdiutil" info -plist | grep -q "<string>$image</string>"; then
  echo "demo: the image is still attached" >&2
  exit 1
fi
say "Nothing is attached any more."
