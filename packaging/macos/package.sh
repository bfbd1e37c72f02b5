#!/usr/bin/env bash
# Makes Quillmont.app.zip of a built application: the same bytes whenever the application is the same.
# Usage: package.sh Quillmont.app FOLDER
set -euo pipefail
[ $# = 2 ] || {
  echo "usage: package.sh Quillmont.app FOLDER" >&2
  exit 2
}
# The linker has signed the program on its own. A Mac's own tool seals the bundle around it as well.
if command -v codesign >/dev/null; then codesign --force --sign - "$1"; fi
mkdir -p "$2"
exec python3 "$(dirname "${BASH_SOURCE[0]}")/zip_application.py" "$1" "$2/Quillmont.app.zip"
