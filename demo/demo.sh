#!/usr/bin/env bash
# Shows Quillmont at work: a real disk image comes into use, falls idle, is ejected after a few
# seconds and announced. Everything that it needs of a user (settings, runtime folder, message bus)
# is made for the occasion in one temporary folder, and goes with it.
#
# usage: demo.sh BUILD_FOLDER
set -euo pipefail
build=$(realpath "$1")
here=$(dirname "$(realpath "${BASH_SOURCE[0]}")")
# shellcheck source=demo/desktop.sh
. "$here/desktop.sh"
timeout_seconds=3
volume=假日照片
mount_point=
has_display=
running=()
work=$(mktemp -d /tmp/quillmont-demo.XXXXXX)
trap 'exit 130' INT TERM
trap clean_up EXIT

image=$work/$volume.img
bundle=$work/Quillmont
hdiutil=$work/hdiutil

say() { printf '\n\033[1m%s\033[0m\n' "$*"; }

fail() {
  echo "demo: $*" >&2
  exit 1
}

clean_up() {
  local status=$?
  trap - EXIT
  stop_running
  if is_attached; then "$hdiutil" detach "$mount_point" -force || true; fi
  rm -rf "$work"
  exit "$status"
}

# ends PID: asks it to, and insists after three seconds; answers its status.
ends() {
  local ticks=30
  kill -TERM "$1" 2>/dev/null || true
  while kill -0 "$1" 2>/dev/null && [ $((ticks--)) -gt 0 ]; do sleep 0.1; done
  kill -KILL "$1" 2>/dev/null || true
  wait "$1" 2>/dev/null
}

stop_running() {
  local pid
  for pid in "${running[@]}"; do ends "$pid" || true; done
  running=()
}

# wait_for SECONDS TEXT: until the program or the desktop has written it.
wait_for() {
  local ticks=$(($1 * 10))
  until grep -qF "$2" "$work/log"; do
    [ $((ticks--)) -gt 0 ] || fail "\"$2\" did not come within $1 seconds"
    sleep 0.1
  done
}

is_attached() {
  local list
  list=$("$hdiutil" info -plist 2>/dev/null) && grep -qaF "<string>$image</string>" <<<"$list"
}

# A session of the demo's own. Of the user's it takes the display and, for the tray, the bus.
private_session() {
  local user_bus=${DBUS_SESSION_BUS_ADDRESS:-unix:path=${XDG_RUNTIME_DIR:-/run/user/$UID}/bus}
  export XAUTHORITY=${XAUTHORITY:-$HOME/.Xauthority}
  mkdir -m 700 "$work/home" "$work/runtime"
  export HOME=$work/home XDG_RUNTIME_DIR=$work/runtime
  export XDG_CONFIG_HOME=$HOME/.config XDG_DATA_HOME=$HOME/.local/share
  unset WAYLAND_DISPLAY
  if xdotool getdisplaygeometry >/dev/null 2>&1; then
    has_display=yes
    export DBUS_SESSION_BUS_ADDRESS=$user_bus
    dbus-send --session --dest=org.freedesktop.DBus --print-reply / \
      org.freedesktop.DBus.Peer.Ping >/dev/null 2>&1 && return
  else
    start_desktop
  fi
  private_bus
}

private_bus() {
  export DBUS_SESSION_BUS_ADDRESS=unix:path=$work/bus
  cat >"$work/bus.conf" <<BUS
<busconfig>
  <type>session</type>
  <listen>$DBUS_SESSION_BUS_ADDRESS</listen>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/>
  </policy>
</busconfig>
BUS
  dbus-daemon --config-file="$work/bus.conf" --nofork --nopidfile 2>/dev/null &
  running+=($!)
  local ticks=50
  until [ -S "$work/bus" ] || [ $((ticks--)) = 0 ]; do sleep 0.1; done
  "$build/demo/quillmont_notification_display" >>"$work/log" 2>&1 &
  running+=($!)
}

# A copy of the program that cannot touch anybody's own image: they are excluded, and in front of
# the disk-image tool stands a guard that lets nothing but the demo's image be detached.
guarded_program() {
  cp -a "$build/Quillmont" "$bundle"
  rm "$bundle/Contents/libexec/hdiutil"
  ln -s "$build/Quillmont/Contents/libexec/hdiutil" "$hdiutil"
  cat >"$bundle/Contents/libexec/hdiutil" <<'GUARD'
#!/usr/bin/env bash
work=$(dirname "$(realpath "$0")")/../../..
[ "$1" != detach ] || [ "$2" = "$(<"$work/mount-point")" ] || exit 1
exec "$work/hdiutil" "$@"
GUARD
  chmod +x "$bundle/Contents/libexec/hdiutil"
}

settings() {
  mkdir -p "$XDG_CONFIG_HOME/quillmont"
  cat >"$XDG_CONFIG_HOME/quillmont/com.norwaldex.Quillmont.plist" <<PLIST
<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict>
<key>com.norwaldex.quillmont.timeoutSeconds</key><real>$timeout_seconds</real>
<key>com.norwaldex.quillmont.excludeList</key><array>
$(cat /sys/block/loop*/loop/backing_file 2>/dev/null | iconv -c -f UTF-8 -t UTF-8 |
    sed 's/&/\&amp;/g; s/</\&lt;/g; s/.*/<string>&<\/string>/')
</array></dict></plist>
PLIST
}

# A small ext4 image named in Chinese, attached; where that cannot be done, a simulated one.
attach_image() {
  local answer
  mkdir "$work/content"
  echo "海边的一天" >"$work/content/日记.txt"
  truncate -s 8M "$image"
  answer=$(/sbin/mkfs.ext4 -q -L "$volume" -d "$work/content" "$image" 2>&1) ||
    fail "no file system can be made: $answer"
  if ! answer=$("$hdiutil" attach "$image" 2>&1); then
    say "This machine cannot attach disk images (${answer//$'\n'/ }): a simulated disk-image tool stands in."
    export QUILLMONT_SIMULATED_IMAGES=$work/simulated
    ln -sf "$here/simulated/hdiutil" "$hdiutil"
    cp "$here/simulated/lsof" "$bundle/Contents/libexec/lsof"
    answer=$("$hdiutil" attach "$image")
  fi
  echo "$answer"
  mount_point=$(sed -n 's/^[^\t]*\t//p' <<<"$answer" | head -n 1)
  printf '%s' "$mount_point" >"$work/mount-point"
}

# Where the volume really is, for a process that wants to open a file on it.
real_folder() {
  local folder name=${mount_point#/Volumes/}
  for folder in "${QUILLMONT_SIMULATED_IMAGES:-/nowhere}/$name" \
    "/media/$(id -un)/$name" "/run/media/$(id -un)/$name"; do
    [ -d "$folder" ] && echo "$folder" && return
  done
}

# The panel, as a click on the icon opens it; a picture of it where there is no screen to see it on.
show_panel() {
  local picture=$build/demo/panel.png
  if ! open_panel "$program"; then
    echo "Click on the icon in your tray to see the panel."
  elif [ -z "$has_display" ]; then
    sleep 1
    import -window root "$picture" && echo "A picture of the panel: $picture"
  fi
  sleep 1
}

touch "$work/log"
guarded_program
private_session
settings

say "1. A disk image named $volume is attached; it is to be ejected after $timeout_seconds idle seconds."
attach_image

say "2. A process opens a file on it, and Quillmont starts."
tail -f "$(real_folder)/日记.txt" >/dev/null &
reader=$!
running+=("$reader")
"$bundle/Contents/MacOS/Quillmont" >>"$work/log" 2>&1 &
program=$!
running+=("$program")
tail -n +1 -F --pid="$program" "$work/log" 2>/dev/null &
running+=($!)
wait_for 10 "Disk image is in use: $mount_point"
show_panel

say "3. The file is closed: the image falls idle, is ejected, verified and announced."
kill "$reader"
wait_for 10 "Disk image is idle: $mount_point"
wait_for 10 "Successfully ejected and verified detached: $mount_point"
[ ! -S "$work/bus" ] || wait_for 5 "因空闲已自动推出"
sleep 0.5

say "4. Quillmont is asked to end."
ends "$program" || fail "it ended with status $?"
if is_attached; then fail "the image is still attached"; fi
say "Nothing is attached any more."
