#!/usr/bin/env bash
# Puts each mistake of a list into a copy of the program, one at a time, and says which test sees it.
# Prints a table; a mistake that no test sees, or that does not compile, is a failure.
#
# usage: run.sh FOLDER [LIST]
set -euo pipefail
folder=$1
list=$(realpath "${2:-$(dirname "${BASH_SOURCE[0]}")/mutations.txt}")
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
# What a mistake makes hang is seen, too.
seconds=120
suites=(program_tests view_tests model_tests)
export QUILLMONT_HISTORIES=300

fail() {
  echo "mutations: $*" >&2
  exit 1
}

rm -rf "$folder"
mkdir -p "$folder/source"
source=$(realpath "$folder/source")
git ls-files -z -co --exclude-standard | xargs -0 cp --parents -t "$source"
cd "$source"
cmake --preset debug >"$source/../output" 2>&1 || fail "$(<"$source/../output")"

build() { cmake --build build/debug --target "${suites[@]}" >"$source/../output" 2>&1; }

# The first test that fails, and how many; empty if none does.
first_failure() {
  local suite output failed
  for suite in "${suites[@]}"; do
    output=$(timeout "$seconds" "build/debug/tests/unit/$suite" --gtest_brief=1 2>&1) && continue
    failed=$(sed -n 's/^\[  FAILED  \] \([A-Za-z0-9_/.]*\).*/\1/p' <<<"$output" | sort -u)
    [ -n "$failed" ] || failed="$suite ends"
    echo "$(head -n 1 <<<"$failed")$(wc -l <<<"$failed" | awk '$1 > 1 { print " and " $1 - 1 " more" }')"
    return
  done
}

# as_code TEXT: in a table.
as_code() { [ -n "${1// /}" ] && printf '`%s`' "${1//|/\\|}" || printf 'nothing'; }

# try FILE TEXT INSTEAD
try() {
  local file=$1 text=$2 instead=$3 original caught
  original=$(<"$file")
  [ "$(grep -cF -- "$text" "$file")" = 1 ] || fail "$file: not once: $text"
  printf '%s\n' "${original/"$text"/"$instead"}" >"$file"
  if build; then caught=$(first_failure); else caught="nothing: it does not compile"; fi
  printf '%s\n' "$original" >"$file"
  tried=$((tried + 1))
  [ -n "$caught" ] || caught="nothing"
  case $caught in nothing*) missed=$((missed + 1)) ;; esac
  echo "| \`$file\` | $(as_code "$text") | $(as_code "$instead") | $caught |"
}

build || fail "$(<"$source/../output")"
[ -z "$(first_failure)" ] || fail "the tests fail as it is"
tried=0
missed=0
echo "| file | what stands there | the mistake | seen by |"
echo "|---|---|---|---|"
while IFS= read -r line <&3; do
  case $line in
    '' | '#'*) ;;
    '- '*) text=${line#- } ;;
    '+ '*) try "$file" "$text" "${line#+ }" ;;
    *) file=$line ;;
  esac
done 3<"$list"
echo
echo "$((tried - missed)) of $tried are seen."
exit "$((missed > 0))"
