#!/usr/bin/env bash
# Makes the Debian package of what has been built: the same bytes whenever that and SOURCE_DATE_EPOCH are the same.
# Usage: package.sh BUILD FOLDER
set -euo pipefail
[ $# = 2 ] || {
  echo "usage: package.sh BUILD FOLDER" >&2
  exit 2
}
umask 022 # folders would have the mode of whoever makes the package
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
# Heard only when it fails.
cpack --config "$1/CPackConfig.cmake" -B "$scratch" >"$scratch/log" 2>&1 || {
  cat "$scratch/log" >&2
  exit 1
}
mkdir -p "$2"
for package in "$scratch"/*.deb; do
  install -m 644 "$package" "$2"
  (cd "$2" && sha256sum "${package##*/}")
done
