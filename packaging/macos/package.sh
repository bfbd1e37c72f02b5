#!/usr/bin/env bash
# Makes Quillmont.app.zip of a built application: the same bytes whenever the application is the same. On a Mac also
# Quillmont.dmg.
# Usage: package.sh Quillmont.app FOLDER
# QUILLMONT_IDENTITY is the certificate to sign with on a Mac; without it the signature is ad hoc.
set -euo pipefail
[ $# = 2 ] || {
  echo "usage: package.sh Quillmont.app FOLDER" >&2
  exit 2
}
here=$(dirname "${BASH_SOURCE[0]}")
# The linker has signed the program on its own. A Mac's own tool seals the bundle around it as well.
if command -v codesign >/dev/null; then
  if [ -n "${QUILLMONT_IDENTITY-}" ]; then
    codesign --force --options runtime --timestamp --sign "$QUILLMONT_IDENTITY" "$1"
  else
    codesign --force --sign - "$1"
  fi
fi
mkdir -p "$2"
python3 "$here/zip_application.py" "$1" "$2/Quillmont.app.zip"
if [ "$(uname)" = Darwin ]; then "$here/disk_image.sh" "$1" "$2"; fi
