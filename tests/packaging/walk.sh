#!/usr/bin/env bash
# The life of the package, from one end to the other; started by bare_system.sh within a bare system.
set -euo pipefail
cd /run/walk
bundle=/usr/lib/quillmont
settings=.config/quillmont/com.norwaldex.Quillmont.plist
image=/run/walk/Walk.img

say() { echo "- $*"; }

fail() {
  echo "walk: $*" >&2
  tail -n 30 log-* >&2 2>/dev/null || :
  exit 1
}

detach_all() {
  local device
  for device in $(losetup -nO NAME -j "$image" 2>/dev/null); do umount "$device" || losetup -d "$device"; done || :
}

# eventually SECONDS COMMAND...
eventually() {
  local ticks=$(($1 * 10))
  until "${@:2}"; do
    [ $((ticks--)) -gt 0 ] || return 1
    sleep 0.1
  done
}

# Everything that is there, but for what the package manager keeps for itself, and what is only for now.
listing() {
  find / -xdev \( -path /var/cache -o -path /var/lib/apt -o -path /var/lib/dpkg -o -path /var/log -o -path /tmp \) -prune \
    -o ! -type d -printf '%p %y %m %u:%g %l\n' -o -printf '%p/ %m %u:%g\n' | sort
  find /etc /usr -xdev -type f -exec sha256sum {} + | sort
  dpkg-query -W
}

# as USER COMMAND...: with the environment of a login.
as() {
  setpriv --reuid "$1" --regid "$1" --clear-groups --reset-env \
    env LC_ALL=C.UTF-8 "XDG_RUNTIME_DIR=/run/user/$(id -u "$1")" "${@:2}"
}

# What a login and a disk service make, and leave.
prepare_users() {
  local user
  for user in root mei; do
    install -d -o "$user" -g "$user" -m 700 "/run/user/$(id -u "$user")" "$(home_of "$user")"/.{cache,config}
  done
  install -d -m 700 /media/root
}
home_of() { getent passwd "$1" | cut -d: -f6; }

# start USER: the program, as the command that everybody types, on the desktop.
start() {
  as "$1" env DISPLAY=:0 quillmont >"log-$1" 2>&1 9>&- &
  program=$!
  # Window managers, trays and the shell make windows of no name; the icon has the program's.
  eventually 20 has_icon || fail "no icon in the tray of $1"
}

has_icon() { [ -n "$(DISPLAY=:0 xdotool search --onlyvisible --class Quillmont 2>/dev/null)" ]; }

has_ended() { ! kill -0 "$program" 2>/dev/null; }

# said USER TEXT
said() { grep -qF -- "$2" "log-$1"; }

# configure USER: a timeout of three seconds.
configure() {
  as "$1" sh -c 'mkdir -p ~/.config/quillmont && cat >"$HOME/$0"' "$settings" <<'PLIST'
<?xml version="1.0"?><plist version="1.0"><dict>
<key>com.norwaldex.quillmont.timeoutSeconds</key><real>3</real></dict></plist>
PLIST
}

install_package() {
  apt-get install -y -qq --no-install-recommends ./quillmont_*.deb >log-apt 2>&1 || fail "it cannot be installed"
  dpkg -V quillmont || fail "what was installed is not what was packed"
  ! ldd "$bundle"/Contents/MacOS/* "$bundle"/Contents/libexec/* | grep "not found" || fail "a library is missing"
  say "installed, with $(dpkg-query -W | wc -l) packages in all"
}

start_desktop() {
  Xvfb :0 -screen 0 1024x768x24 -nolisten tcp -ac >log-server 2>&1 &
  eventually 15 xdotool_works || fail "no display"
  DISPLAY=:0 trayer --edge top --align right --widthtype request --height 24 >log-tray 2>&1 &
}
xdotool_works() { DISPLAY=:0 xdotool getdisplaygeometry >/dev/null 2>&1; }

# A real image, held, let go, and ejected.
eject_an_image() {
  configure root
  truncate -s 8M "$image"
  mkfs.ext4 -q -L Walk "$image"
  "$bundle/Contents/libexec/hdiutil" attach "$image" >log-attach
  mount_point=$(findmnt -nro TARGET "$(losetup -nO NAME -j "$image")")
  exec 9>"$mount_point/held"
  start root
  eventually 20 said root "Disk image is in use: /Volumes/Walk" || fail "an image in use is not seen"
  exec 9>&-
  eventually 30 said root "Successfully ejected and verified detached: /Volumes/Walk" || fail "it is not ejected"
  [ -z "$(losetup -nO NAME -j "$image")" ] || fail "the image is still attached"
  say "an image was held, let go and ejected"
}

# uninstall USER: as the program starts it from its panel.
uninstall() {
  as "$1" /bin/bash "$bundle/Contents/Resources/uninstall.sh" >"log-uninstall-$1" 2>&1 || fail "the uninstaller fails for $1"
  eventually 5 has_ended || fail "the program of $1 goes on"
  grep -qxF "left $bundle: it is a package's, and goes with sudo apt-get remove quillmont" "log-uninstall-$1" ||
    fail "the uninstaller does not say how the package goes"
  dpkg -V quillmont || fail "the uninstaller took something from the package"
  say "uninstalled by $1, and told that the rest is the package's"
}

# As an upgrade does it: every file is replaced, and the program must not take itself for deleted.
replace_under_a_running_program() {
  local file
  file=$(stat -c %i "$bundle/Contents/MacOS/Quillmont")
  apt-get install -y -qq --reinstall ./quillmont_*.deb >log-apt 2>&1 || fail "it cannot be installed again"
  [ "$file" != "$(stat -c %i "$bundle/Contents/MacOS/Quillmont")" ] || fail "nothing was replaced"
  # Longer than it takes the program to look at its folder.
  ! eventually 7 has_ended || fail "the program ends when its package is replaced"
  [ -e "/home/mei/$settings" ] || fail "settings are lost when the package is replaced"
  say "replaced under a running program, which goes on"
}

remove_under_a_running_program() {
  configure mei
  start mei
  apt-get purge -y -qq --autoremove quillmont >log-apt 2>&1 || fail "it cannot be removed"
  eventually 20 has_ended || fail "the program goes on without its files"
  [ ! -e "/home/mei/$settings" ] || fail "settings stay"
  say "removed under a running program, which has ended"
}

if [ "${1-}" != alone ]; then
  prepare_users
  listing >before
  install_package
  # Without a network the desktop is nobody else's; the program needs none.
  exec unshare --net bash "$0" alone
fi
trap detach_all EXIT
start_desktop
eject_an_image
uninstall root
configure mei
start mei
replace_under_a_running_program
uninstall mei
remove_under_a_running_program
listing >after
diff before after >difference || fail "not as it was: $(cat difference)"
say "nothing is left"
