#!/usr/bin/env bash
# Makes the Debian package of the newest commit twice: in two folders, by two users' habits, and once without what the
# compiler's cache keeps. Says where the two differ, if they do. Takes some minutes.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
scratch=$(mktemp -d "${TMPDIR:-/tmp}/quillmont-reproduce.XXXXXX")
trap 'rm -rf "$scratch"' EXIT

# make FOLDER [NAME=VALUE ...]
make() {
  git clone -q . "$scratch/$1"
  (cd "$scratch/$1" && env -u SOURCE_DATE_EPOCH "${@:2}" ./dev package deb)
}

(umask 022 && make one)
(umask 077 && make "another place/two" CCACHE_DISABLE=1 TZ=Asia/Shanghai LC_ALL=C.UTF-8 "HOME=$scratch")
for package in "$scratch"/one/dist/*.deb; do
  other="$scratch/another place/two/dist/${package##*/}"
  cmp "$package" "$other" || {
    mkdir -p "$scratch/left" "$scratch/right"
    dpkg-deb -R "$package" "$scratch/left"
    dpkg-deb -R "$other" "$scratch/right"
    diff -rq "$scratch/left" "$scratch/right" || :
    exit 1
  }
  echo "both times the same: ${package##*/}"
done
