#!/bin/bash
# Runs a program that was built upon GNUstep in a small world of its own, and ends with its status:
#   run.sh [--display] PROGRAM [ARGUMENT...]
# Processes, temporary files and settings of that world end with it, also when it is killed: GNUstep
# starts a daemon that would outlive the program, and keeps settings in the home folder of the
# password database. With --display there is an X server in it, and PROGRAM is told to use fonts
# that have Chinese characters. Status 77: no such world can be had on this machine.
set -u

skip() {
  echo "$0: $1" >&2
  exit 77
}

# The world's own folder: a file system in memory that nobody else sees.
readonly folder=/mnt

enter_world() {
  local world=(unshare --pid --fork --kill-child --mount-proc --net)
  [ "$(id -u)" = 0 ] || world+=(--user --map-root-user)
  "${world[@]}" mount -t tmpfs tmpfs $folder 2>/dev/null ||
    skip "this user may not have namespaces here"
  [ "$1" != --display ] || mkdir -p -m 1777 /tmp/.X11-unix
  exec "${world[@]}" "$BASH" "$0" --inside "$@"
}

prepare_settings() {
  mkdir $folder/{Defaults,Library,tmp,home}
  grep -v '^GNUSTEP_USER_' /etc/GNUstep/GNUstep.conf >$folder/GNUstep.conf ||
    skip "GNUstep is not installed"
  printf 'GNUSTEP_USER_DEFAULTS_DIR=%s\nGNUSTEP_USER_DIR_LIBRARY=%s\n' \
    $folder/Defaults $folder/Library >>$folder/GNUstep.conf
  export GNUSTEP_CONFIG_FILE=$folder/GNUstep.conf HOME=$folder/home LC_ALL=C.UTF-8
  export TMPDIR=$folder/tmp TMP=$folder/tmp TEMP=$folder/tmp
}

# Neither sockets nor a lock file of its number are shared with other servers of the machine.
start_display() {
  local number
  mount -t tmpfs -o mode=1777 tmpfs /tmp/.X11-unix
  type -P Xvfb >/dev/null || skip "there is no Xvfb"
  exec 3< <(exec Xvfb -displayfd 1 -screen 0 1280x800x24 -nolisten tcp -nolock 2>$folder/Xvfb.log)
  read -r -t 30 number <&3 || skip "Xvfb does not start: $(tail -n 1 $folder/Xvfb.log)"
  export DISPLAY=:$number
}

if [ $# -eq 0 ]; then
  echo "usage: $0 [--display] PROGRAM [ARGUMENT...]" >&2
  exit 2
fi
if [ "$1" != --inside ]; then
  enter_world "$@"
fi
shift
mount -t tmpfs tmpfs $folder
prepare_settings
if [ "$1" = --display ]; then
  shift
  start_display
  set -- "$@" -NSFont NotoSansCJKsc-Regular -NSBoldFont NotoSansCJKsc-Bold \
    -GSSuppressAppIcon YES -NSScrollViewInterfaceStyle NSMacintoshInterfaceStyle
fi
# Not in place of this shell: the first process of a world takes no signal that it does not handle.
"$@"
exit $?
