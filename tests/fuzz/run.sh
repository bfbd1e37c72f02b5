#!/usr/bin/env bash
# run.sh BUILD SECONDS NAME: runs one fuzzer over its seeds and over what earlier runs have found, and says in one
# line what came of it. Fails on a finding.
set -euo pipefail
build=$1
seconds=$2
name=$3
here=$(dirname "${BASH_SOURCE[0]}")
corpus=$build/corpus/$name
findings=$build/findings/$name
log=$build/logs/$name.log
mkdir -p "$corpus" "$findings" "$build/logs"

# Its files are made and removed by the thousand: in memory, where that can be had.
scratch=$(mktemp -d /dev/shm/quillmont-fuzz.XXXXXX 2>/dev/null || mktemp -d "${TMPDIR:-/tmp}/quillmont-fuzz.XXXXXX")
trap 'rm -rf "$scratch"' EXIT

options=(-max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -max_len=4096 -print_final_stats=1
  -artifact_prefix="$findings/")
case $name in
  property_list | attached_images | launch_agent | settings) options+=(-dict="$here/dictionaries/property_list.dict") ;;
esac
status=0
TMPDIR=$scratch "$build/tests/fuzz/fuzz_$name" "${options[@]}" "$corpus" "$here/seeds/$name" >"$log" 2>&1 || status=$?

# The last progress line: "#123 DONE cov: 45 ft: 67 corp: 8/90b ..."
executions=$(awk '/^stat::number_of_executed_units:/ { print $2 } /^#[0-9]+\t/ { last = substr($1, 2) }
                  END { if (last) print last }' "$log" | head -n 1)
coverage=$(sed -n 's/.*cov: \([0-9]*\) ft: \([0-9]*\) .*/\1 edges, \2 features/p' "$log" | tail -n 1)
if [ "$status" = 0 ]; then
  printf '%-22s %10s executions, %s, no finding\n' "$name" "${executions:-0}" "${coverage:-no coverage}"
  exit 0
fi
printf '%-22s %10s executions, %s, 1 FINDING\n' "$name" "${executions:-0}" "${coverage:-no coverage}"
grep -m 1 -E 'broken promise|ERROR: |runtime error|SUMMARY' "$log" | sed 's/^/  /' || tail -n 3 "$log"
case=$(sed -n 's/.*Test unit written to //p' "$log" | tail -n 1)
echo "  its log:   $log"
[ -z "$case" ] || {
  echo "  again:     $build/tests/fuzz/fuzz_$name $case"
  echo "  to keep:   cp $case $here/seeds/$name/"
}
exit 1
