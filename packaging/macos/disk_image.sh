#!/usr/bin/env bash
# Makes Quillmont.dmg of a signed application: a volume with it and a link to where it belongs. On a Mac only.
# Usage: disk_image.sh Quillmont.app FOLDER
set -euo pipefail
[ $# = 2 ] || {
  echo "usage: disk_image.sh Quillmont.app FOLDER" >&2
  exit 2
}
image=$2/Quillmont.dmg
scratch=$(mktemp -d)
attached=
clean_up() {
  [ -z "$attached" ] || hdiutil detach "$scratch/volume" -quiet -force || :
  rm -rf "$scratch"
}
trap clean_up EXIT

mkdir -p "$2" "$scratch/content" "$scratch/volume"
# Unlike cp it keeps all that a signature covers.
ditto "$1" "$scratch/content/Quillmont.app"
ln -s /Applications "$scratch/content/Applications"
hdiutil create -quiet -ov -volname Quillmont -srcfolder "$scratch/content" -fs HFS+ -format UDZO "$image"

# What somebody will find who opens it.
hdiutil attach "$image" -quiet -readonly -nobrowse -mountpoint "$scratch/volume"
attached=yes
codesign --verify --deep --strict "$scratch/volume/Quillmont.app"
[ "$(readlink "$scratch/volume/Applications")" = /Applications ]
(cd "$2" && shasum -a 256 Quillmont.dmg)
