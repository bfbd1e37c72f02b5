#!/usr/bin/env bash
# Whether every folder includes only what it may: arrows between the rooms of the program point one way,
# and the portable ones know no system and no toolkit. Tests may include what they like.
#
# usage: check_layers.sh [SOURCE_FOLDER]
set -euo pipefail
cd "${1:-$(dirname "${BASH_SOURCE[0]}")/../..}"

# A folder : the folders that it may include from, beside itself : the headers in angle brackets, beside those of the
# standard library, as an extended regular expression. A folder without a line of its own is like the one above it.
layers='
app                     : ui monitor settings platform platform/view :
ui                      : monitor settings platform platform/view :
monitor                 : settings platform :
settings                : platform :
platform                : :
platform/view           : platform :
platform/posix          : platform : (sys/)?[a-z_]+\.h
platform/linux          : platform platform/posix platform/linux/desktop : (sys/)?[a-z_]+\.h
platform/linux/desktop  : platform platform/posix platform/view platform/linux platform/linux/views : (sys/|xcb/)?[a-z_]+\.h|systemd/sd-bus\.h|Q[A-Za-z]+
platform/linux/views    : platform platform/view platform/linux/desktop : Q[A-Za-z]+
platform/linux/tools    : platform platform/posix platform/linux : ((sys|linux)/)?[a-z_]+\.h
platform/linux/tools/hdiutil   : platform platform/posix platform/linux : ((sys|linux|systemd|blkid)/)?[a-z_-]+\.h
platform/linux/tools/osascript : platform platform/posix : ((sys|systemd)/)?[a-z_-]+\.h
platform/macos          : platform platform/posix platform/macos/desktop : (pthread/)?[a-z_]+\.h|(Foundation/Foundation|AppKit/AppKit)\.h
platform/macos/desktop  : platform platform/posix platform/view platform/macos platform/macos/views : signal\.h|AppKit/AppKit\.h
platform/macos/views    : platform platform/view platform/macos : AppKit/AppKit\.h
'

sources() {
  find app ui monitor settings platform -type f \( -name '*.h' -o -name '*.cpp' -o -name '*.mm' \) \
    ! -name '*_test.cpp' ! -name '*_test.mm' ! -name '*Test.h' ! -name '*Test.cpp' ! -name '*Test.mm' | sort
}

# FILE:LINE:#include ... of every source, into a verdict on each.
sources | xargs grep -nE '^[[:space:]]*#[[:space:]]*(include|import)' /dev/null | awk -v layers="$layers" '
  function trim(text) { gsub(/^[ \t]+|[ \t]+$/, "", text); return text }
  function folder_of(path) { return path ~ /\// ? substr(path, 1, match(path, /\/[^\/]*$/) - 1) : "" }
  function wrong(why) { print where ": " why; mistakes++ }
  BEGIN {
    count = split(layers, lines, "\n")
    for (i = 1; i <= count; i++) {
      if (split(lines[i], part, ":") < 3) continue
      folder = trim(part[1])
      folders[folder] = " " trim(part[2]) " "
      headers[folder] = trim(part[3])
    }
  }
  {
    path = substr($0, 1, index($0, ":") - 1)
    where = path ":" substr($0, length(path) + 2, index(substr($0, length(path) + 2), ":") - 1)
    own = folder_of(path)
    room = own
    while (room != "" && !(room in folders)) room = folder_of(room)
    if ($0 ~ /#[ \t]*import/ && path !~ /^platform\/macos\//) wrong("Objective-C outside of platform/macos")
    if (match($0, /"[^"]+"/)) {
      included = substr($0, RSTART + 1, RLENGTH - 2)
      from = folder_of(included)
      if (from != own && from != room && !index(folders[room], " " from " ")) wrong(room " may not include " included)
    } else if (match($0, /<[^>]+>/)) {
      included = substr($0, RSTART + 1, RLENGTH - 2)
      if (included !~ /^[a-z_]+$/ && (headers[room] == "" || included !~ "^(" headers[room] ")$"))
        wrong(room " may not include <" included ">")
    } else {
      wrong("what this includes cannot be told")
    }
    seen++
  }
  END {
    if (seen < 1) { print "no source was found"; exit 1 }
    if (mistakes) exit 1
    print seen " includes point where they may"
  }'
