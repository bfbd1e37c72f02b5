#!/usr/bin/env bash
# Runs the commands of the README pages, as they stand there, and looks at what each one does. A command that nobody
# runs here is a failure, so that a new one gets its run.
#
# usage: readme_commands.sh FOLDER_FOR_WHAT_THEY_MAKE
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
work=$1
rm -rf "$work"
mkdir -p "$work"
failures=0

fail() {
  echo "failed: $command: $*"
  sed 's/^/    /' "$work/output"
  failures=$((failures + 1))
}

# An indented line, outside of a fence, is a command.
commands() {
  awk '/^```/ { fenced = !fenced } !fenced && /^    [^ ]/ { sub(/^    /, ""); print }' README.md README.zh-CN.md | sort -u
}

# Whatever is named in passing has to be known to ./dev.
names() { grep -oh '`\./dev [a-z]*' README.md README.zh-CN.md | sed 's/.* //' | sort -u; }

demonstrates() {
  bash -c "$command" >"$work/output" 2>&1 || {
    fail "it ended with $?"
    return
  }
  grep -q 'Successfully ejected and verified detached: /Volumes/假日照片' "$work/output" || fail "no image was ejected"
  grep -q '磁盘已安全推出' "$work/output" || fail "nothing was announced"
  grep -q 'Nothing is attached any more' "$work/output" || fail "an image is left"
}

# What apt-get then makes of it is the package's own test.
makes_a_package() {
  rm -f dist/quillmont_*.deb
  ./dev package deb >"$work/output" 2>&1 || fail "it ended with $?"
  dpkg-deb --contents dist/quillmont_*.deb >>"$work/output" 2>&1 || fail "there is no package"
  grep -q ' \./usr/lib/quillmont/Contents/MacOS/Quillmont$' "$work/output" || fail "the program is not in it"
}

# In folders of its own: a program that is there already would be the one that stays. Without a display, so that nothing
# on the desktop changes. A shell lets its background commands ignore Ctrl-C, unless told otherwise.
runs_until_interrupted() {
  local pid
  mkdir -p -m 700 "$work/user"
  XDG_RUNTIME_DIR=$work/user XDG_CONFIG_HOME=$work/user XDG_DATA_HOME=$work/user DISPLAY='' WAYLAND_DISPLAY='' \
    setsid env --default-signal=INT bash -c "exec $command" >"$work/output" 2>&1 &
  pid=$!
  within 300 says_or_ended 'Quillmont\[[0-9]*\] No display' "$pid" || true
  says 'Quillmont\[[0-9]*\] No display' || fail "the program did not start"
  kill -INT "$pid" 2>/dev/null || true
  within 10 ended "$pid" || {
    fail "Ctrl-C does not end it"
    kill -KILL "$pid"
  }
  wait "$pid" || fail "the program ended with $?"
}

says() { grep -q "$1" "$work/output"; }
says_or_ended() { says "$1" || ended "$2"; }
ended() { ! kill -0 "$1" 2>/dev/null; }

# within SECONDS COMMAND...
within() {
  local ticks=$(($1 * 10))
  shift
  until "$@"; do
    [ $((ticks--)) -gt 0 ] || return 1
    sleep 0.1
  done
}

while read -r command; do
  echo "$command"
  : >"$work/output"
  case $command in
    './dev demo') demonstrates ;;
    './dev run') runs_until_interrupted ;;
    './dev package deb && sudo apt-get install ./dist/quillmont_*.deb') makes_a_package ;;
    './dev package mac') echo "  is tried where the Mac's program is built: ./dev test macos" ;;
    './dev test') echo "  is what runs this" ;;
    xattr*) echo "  is for a Mac" ;;
    *) fail "nothing here runs it" ;;
  esac
done < <(commands)

command='./dev help'
$command >"$work/output"
for name in $(names); do grep -q "^\./dev $name\b" "$work/output" || fail "it does not know $name"; done
exit "$((failures > 0))"
