#!/usr/bin/env bash
# Takes the package through its life in a bare system of this machine's release: what comes, what works, and that
# nothing stays. The system is fetched once and kept; each walk has a layer of its own over it, in memory, and tables
# of mounts and processes of its own.
# Usage: bare_system.sh fetch KEPT: into this folder
#        bare_system.sh walk KEPT FOLDER: with the package in FOLDER
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
kept=$(realpath -m "$2")
# What the walk itself uses; nothing of it is a dependency of the program's.
tools=xvfb,trayer,xdotool,e2fsprogs

[ "$(id -u)" = 0 ] || skip "only root can make a bare system"
need debootstrap apt-get unshare
unshare --mount --pid --fork true 2>/dev/null || skip "no tables of mounts and processes of its own can be had here"
[ -e /dev/loop-control ] || skip "there are no loop devices here"
codename=$(. /etc/os-release && echo "${VERSION_CODENAME-}")
[ "$(. /etc/os-release && echo "$ID")" = debian ] || skip "this is no Debian system"

# The archives of this release that the machine itself uses, a line each: address, suite, component.
archives() {
  apt-get indextargets --format '$(REPO_URI) $(RELEASE) $(COMPONENT)' 'Created-By: Packages' 'Origin: Debian' |
    awk -v codename="$codename" 'index($2, codename) == 1' | sort -u
}

fetch() {
  local mirror
  # A machine that was set up without lists of packages does not know whose an archive is.
  [ -n "$(archives)" ] || apt-get update -qq >/dev/null 2>&1 || :
  mirror=$(archives | awk -v codename="$codename" '$2 == codename { print $1; exit }')
  [ -n "$mirror" ] || skip "this machine knows no archive of $codename"
  rm -rf "$kept"
  mkdir -p "$kept/archives/partial"
  debootstrap --variant=minbase --include="$tools" "$codename" "$kept/root" "$mirror" >"$kept/log" 2>&1 ||
    skip "no bare system can be fetched: $(tail -n 1 "$kept/log")"
  archives | sed 's/^/deb /' >"$kept/root/etc/apt/sources.list"
  apt-config dump | grep -i '^Acquire::[^ ]*Proxy' >"$kept/root/etc/apt/apt.conf.d/90proxy" || :
  cp -L /etc/resolv.conf "$kept/root/etc/resolv.conf"
  chroot "$kept/root" sh -c "apt-get update -qq && apt-get dist-upgrade -y -qq" >>"$kept/log" 2>&1 ||
    skip "no packages can be fetched: $(tail -n 1 "$kept/log")"
  chroot "$kept/root" useradd --create-home mei
  rm -f "$kept/root"/var/cache/apt/archives/*.deb
  touch "$kept/whole"
}

# enter PACKAGE, in tables of its own: the kept system with a layer over it becomes the root, and the walk begins.
enter() {
  local root=$kept/layers/root
  mount --make-rprivate /
  mount -t tmpfs -o mode=755 layers "$kept/layers"
  mkdir "$kept"/layers/{upper,work,root}
  mount -t overlay -o "lowerdir=$kept/root,upperdir=$kept/layers/upper,workdir=$kept/layers/work" layers "$root"
  mount --rbind /dev "$root/dev"
  mount -t proc proc "$root/proc"
  mount -t sysfs sysfs "$root/sys"
  mount -t tmpfs -o mode=755 run "$root/run"
  mount --bind "$kept/archives" "$root/var/cache/apt/archives"
  mkdir "$root/run/walk"
  cp "$here/walk.sh" "$1" "$root/run/walk"
  cd "$root"
  pivot_root . mnt
  cd /
  # Other tests' volumes would be kept busy by this table.
  umount -l /mnt
  exec env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 bash /run/walk/walk.sh
}

case $1 in
  fetch) [ -e "$kept/whole" ] || fetch ;;
  walk)
    [ -e "$kept/whole" ] || skip "there is no bare system"
    mkdir -p "$kept/layers"
    exec unshare --mount --pid --fork --kill-child "$0" enter "$kept" "$3"
    ;;
  enter) enter "$(realpath "$3"/*.deb)" ;;
esac
