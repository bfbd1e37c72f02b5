#!/usr/bin/env bash
# Made by somebody of other habits, at another time of the day, the package has the same bytes.
# Usage: same_again.sh BUILD FOLDER
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
again=$(mktemp -d)
trap 'rm -rf "$again"' EXIT
(umask 077 && TZ=Asia/Shanghai LC_ALL=C.UTF-8 "$here/../../packaging/linux/package.sh" "$1" "$again")
cmp "$2"/*.deb "$again"/*.deb
