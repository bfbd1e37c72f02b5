#!/usr/bin/env bash
# Links the Mac's program once more, in another folder and from objects of another hour, and compares it
# with the one that was built: neither may have got into it.
# Usage: relink.sh BUILD-FOLDER
set -euo pipefail
build=$1 program=Quillmont.app/Contents/MacOS/Quillmont
elsewhere=$(mktemp -d "${TMPDIR:-/tmp}/quillmont-relink.XXXXXX")
trap 'rm -rf "$elsewhere"' EXIT

cd "$build"
command=$(ninja -t commands "$program" | tail -n 1)
find . -name '*.a' -exec cp --parents {} "$elsewhere" \;
cp --parents -r CMakeFiles/Quillmont.dir "$elsewhere"
mkdir -p "$elsewhere/${program%/*}"
cd "$elsewhere"
find . -type f -exec touch -d 2001-02-03 {} +
# With a cache of its own, or else it might only hand out what it made before.
sed "s|ZIG_LOCAL_CACHE_DIR='[^']*'|ZIG_LOCAL_CACHE_DIR='$elsewhere/cache'|" "$build/zigbin/c++" >linker
chmod +x linker
bash -c "${command//"$build/zigbin/c++"/"$elsewhere/linker"}"
cmp "$build/$program" "$program"
