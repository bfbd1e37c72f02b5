#!/usr/bin/env bash
# Makes the package of a build. Usage: make.sh BUILD FOLDER
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
need cpack dpkg-shlibdeps file xz
rm -rf "$2"
"$here/../../packaging/linux/package.sh" "$1" "$2"
