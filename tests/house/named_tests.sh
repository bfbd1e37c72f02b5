#!/usr/bin/env bash
# Whether every test that the documents name as a proof exists: `Suite.Name`, also with `*` or `...` for what was left
# out, and `.Name` for another one of the suite before. A test that is renamed takes its mention along.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

# Suite.Name of every test that there is.
tests() {
  find . -path ./build -prune -o \( -name '*.cpp' -o -name '*.mm' \) -print0 | xargs -0 cat | tr -s '\n ' ' ' |
    grep -oE 'TEST(_[FP])?\([A-Za-z0-9]+, *[A-Za-z0-9]+\)' | sed -E 's/.*\(([A-Za-z0-9]+), *([A-Za-z0-9]+)\)/\1.\2/'
}

# FILE:LINE:TEXT of every mention. The back quotes are those of the documents.
mentions() {
  # shellcheck disable=SC2016
  local quoted='`\.+\*?[A-Z][A-Za-z0-9*]*(\.\.\.)?`'
  grep -noE "[A-Z][A-Za-z0-9]*\.\*?[A-Z][A-Za-z0-9*]*(\.\.\.)?|$quoted" docs/security.md docs/reliability.md
}

awk '
  NR == FNR { known[$0] = 1; count++; next }
  {
    at = $0
    sub(/:[^:]*$/, "", at)
    text = substr($0, length(at) + 2)
    gsub(/`/, "", text)
    if (text ~ /^\./) {
      sub(/^\.\.\./, ".*", text)
      text = suite text
    }
    sub(/\.\.\.$/, "*", text)
    suite = substr(text, 1, index(text, ".") - 1)
    pattern = text
    gsub(/\./, "[.]", pattern)
    gsub(/\*/, "[A-Za-z0-9]*", pattern)
    found = 0
    for (name in known) if (name ~ "^" pattern "$") { found = 1; break }
    if (!found) { print at ": there is no test " text; missing++ }
    mentioned++
  }
  END {
    if (!missing) print mentioned " mentions, each of a test among " count
    exit missing > 0 || mentioned == 0
  }' <(tests) <(mentions)
