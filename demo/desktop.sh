# A desktop without a screen, and how to open Quillmont's panel on any. To be sourced by a script
# that keeps the processes to end in "running" and has a folder of its own in "work".

# Exports DISPLAY.
start_desktop() {
  mkfifo "$work/display"
  Xvfb -displayfd 3 -screen 0 960x600x24 -nolisten tcp 3>"$work/display" >/dev/null 2>&1 &
  running+=($!)
  read -r DISPLAY <"$work/display"
  export DISPLAY=:$DISPLAY
  rm "$work/display"
  picom --backend xrender --config /dev/null >/dev/null 2>&1 &
  running+=($!)
  trayer --edge top --align right --widthtype request --height 24 >/dev/null 2>&1 &
  running+=($!)
}

# The program's icon in the tray, its smallest window that shows.
icon_window() {
  local window geometry
  for window in $(xdotool search --onlyvisible --class Quillmont 2>/dev/null); do
    geometry=$(xdotool getwindowgeometry --shell "$window" 2>/dev/null) || continue
    (eval "$geometry" && [ "$WIDTH" -le 64 ] && echo "$window")
  done | head -n 1
}

# open_panel PID: clicks the icon; where the tray is one of the message bus, has it activated.
open_panel() {
  local ticks=50 window geometry item=org.kde.StatusNotifierItem
  while [ $((ticks--)) -gt 0 ]; do
    window=$(icon_window)
    if [ -n "$window" ]; then
      geometry=$(xdotool getwindowgeometry --shell "$window")
      (eval "$geometry" && xdotool mousemove $((X + WIDTH / 2)) $((Y + HEIGHT / 2)) click 1)
      return
    fi
    dbus-send --session --print-reply --dest="$item-$1-1" /StatusNotifierItem \
      "$item.Activate" int32:0 int32:0 >/dev/null 2>&1 && return
    sleep 0.1
  done
  return 1
}
