#!/usr/bin/env bash
# Of what is installed into a user's own folder, without a package, the uninstaller leaves no file.
# Usage: by_hand.sh BUILD
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
mkdir -m 700 "$home/runtime"
cmake --install "$1" --prefix "$home/.local" >/dev/null
[ "$(find "$home" -type f | wc -l)" -gt 10 ] || fail "next to nothing was installed"
env -u XDG_CONFIG_HOME -u XDG_DATA_HOME -u XDG_STATE_HOME -u XDG_CACHE_HOME HOME="$home" XDG_RUNTIME_DIR="$home/runtime" \
  bash "$home/.local/lib/quillmont/Contents/Resources/uninstall.sh" >"$home/said"
rm "$home/said"
left=$(find "$home" ! -type d)
[ -z "$left" ] || fail "these stay: $left"
