#!/usr/bin/env bash
# Whether check_layers.sh finds an include that points the wrong way, and lets the right ones be.
set -euo pipefail
check=$(realpath "$(dirname "${BASH_SOURCE[0]}")/check_layers.sh")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

# tree FILE LINE: a program with that line, and one that is right.
tree() {
  rm -rf "$work/tree"
  mkdir -p "$work"/tree/{app,ui,monitor,settings,platform} "$work/tree/$(dirname "$1")"
  echo '#include <string>' >"$work/tree/app/right.cpp"
  echo "$2" >"$work/tree/$1"
}

allows() {
  tree "$@"
  "$check" "$work/tree" >"$work/answer" || {
    echo "refused: $1: $2: $(<"$work/answer")"
    failures=$((failures + 1))
  }
}

refuses() {
  tree "$@"
  if "$check" "$work/tree" >"$work/answer"; then
    echo "not found: $1: $2"
    failures=$((failures + 1))
  elif ! grep -q "^$1:1: " "$work/answer"; then
    echo "found elsewhere: $1: $2: $(<"$work/answer")"
    failures=$((failures + 1))
  fi
}

allows monitor/cycle.cpp '#include "settings/ConfigManager.h"'
allows monitor/cycle.cpp '#include <unordered_map>'
allows app/main.cpp '#include "ui/MainView.h"'
allows platform/posix/files.cpp '#include <sys/stat.h>'
allows platform/linux/views/LabelView.cpp '#include <QLabel>'
allows platform/linux/tools/lsof/scan.cpp '#include "platform/linux/mount_table.h"'
allows platform/macos/Host.mm '#import <Foundation/Foundation.h>'
allows monitor/cycle_test.cpp '#include <gtest/gtest.h>'

refuses settings/ConfigManager.cpp '#include "monitor/QuillmontDaemon.h"'
refuses monitor/scan.cpp '#include "ui/MainView.h"'
refuses monitor/scan.h '#include "platform/view/View.h"'
refuses monitor/scan.cpp '#include "platform/linux/mount_table.h"'
refuses monitor/scan.cpp '#include <unistd.h>'
refuses ui/MainView.cpp '#include <QWidget>'
refuses ui/MainView.cpp '  #  include <sys/stat.h>'
refuses app/main.cpp '#include "platform/macos/Host.h"'
refuses platform/FileManager.cpp '#include "platform/posix/files.h"'
refuses platform/view/layout.cpp '#include "ui/MainView.h"'
refuses platform/posix/files.cpp '#include "platform/linux/mount_table.h"'
refuses platform/linux/Host.cpp '#include "app/AppDelegate.h"'
refuses platform/linux/Host.cpp '#include <QApplication>'
refuses platform/linux/tools/lsof/main.cpp '#include <systemd/sd-bus.h>'
refuses platform/linux/tools/lsof/main.cpp '#include "platform/linux/tools/hdiutil/attach.h"'
refuses platform/macos/views/LabelView.mm '#include "platform/linux/views/LabelView.h"'
refuses platform/linux/Host.cpp '#import <Foundation/Foundation.h>'
refuses app/main.cpp '#include HOST'

tree app/right.cpp ''
if "$check" "$work/tree" >/dev/null; then
  echo "a tree without any include passed"
  failures=$((failures + 1))
fi
exit "$((failures > 0))"
