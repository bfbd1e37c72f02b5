#!/usr/bin/env bash
# Takes the package through its life in a bare system of this machine's release: what comes, what works, and that
# nothing stays. The system is fetched once and kept; each walk has a layer of its own over it, in memory, and tables
# of mounts and processes of its own.
# Usage: bare_system.sh FOLDER KEPT, the folder with the package, and the one that keeps the bare system
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
package=$(realpath "$1"/*.deb)
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
  apt-get indextargets --format '$(REPO_URI) $(RELEASE) $(CODENAME) $(COMPONENT)' 'Created-By: Packages' |
    awk -v codename="$codename" 'index($3, codename) == 1 { print $1, $2, $4 }' | sort -u
}

fetch() {
  local mirror
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

# In tables of its own: the kept system with a layer over it becomes the root, and the walk begins.
if [ "${3-}" = walk ]; then
  mount --make-rprivate /
  mount -t tmpfs -o mode=755 layers "$kept/layers"
  mkdir "$kept"/layers/{upper,work,root}
  root=$kept/layers/root
  mount -t overlay -o "lowerdir=$kept/root,upperdir=$kept/layers/upper,workdir=$kept/layers/work" layers "$root"
  mount --rbind /dev "$root/dev"
  mount -t proc proc "$root/proc"
  mount -t sysfs sysfs "$root/sys"
  mount -t tmpfs -o mode=755 run "$root/run"
  mount --bind "$kept/archives" "$root/var/cache/apt/archives"
  mkdir "$root/run/walk"
  cp "$here/walk.sh" "$package" "$root/run/walk"
  cd "$root"
  pivot_root . mnt
  cd /
  # Other tests' volumes would be kept busy by this table.
  umount -l /mnt
  exec env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 bash /run/walk/walk.sh
fi

[ -e "$kept/whole" ] || fetch
mkdir -p "$kept/layers"
exec unshare --mount --pid --fork --kill-child "$0" "$1" "$kept" walk
