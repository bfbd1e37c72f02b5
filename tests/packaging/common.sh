# What the tests of the package share; to be sourced.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# One commit's time would do as well: any that both makings share.
export SOURCE_DATE_EPOCH=1700000000

# Told to ./dev in the words of the other tests.
skip() {
  printf 'package: Skipped\n%s\n' "$1"
  exit 77
}

fail() {
  echo "package: $*" >&2
  exit 1
}

# need PROGRAM...
need() {
  local program
  for program in "$@"; do command -v "$program" >/dev/null || skip "there is no $program here"; done
}
