#!/usr/bin/env bash
# The package by the judges of its parts. Usage: rules.sh FOLDER
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
need lintian desktop-file-validate appstreamcli man dpkg-parsechangelog
package=$(echo "$1"/*.deb)
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
dpkg-deb -x "$package" "$tree"

lintian --allow-root --fail-on error,warning "$package" || fail "lintian finds fault"
said=$(desktop-file-validate "$tree/usr/share/applications/quillmont.desktop" 2>&1) || fail "$said"
[ -z "$said" ] || fail "$said"
appstreamcli validate --no-net "$tree"/usr/share/metainfo/*.xml
for page in "$tree"/usr/share/man/man1/*.gz "$tree"/usr/share/man/zh_CN/man1/*.gz; do
  said=$(LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings -E UTF-8 -l -Tutf8 -Z "$page" 2>&1 >/dev/null)
  [ -z "$said" ] || fail "${page#"$tree"}: $said"
done
gzip -dc "$tree/usr/share/doc/quillmont/changelog.gz" >"$tree/changelog"
version=$(dpkg-parsechangelog -l "$tree/changelog" -S Version)
[ "$version" = "$(dpkg-deb -f "$package" Version)" ] || fail "the change log is about $version"

# The icon that the menu entry names, in every size that a menu asks for.
for size in 16 24 32 48 64 128 256; do
  icon=$tree/usr/share/icons/hicolor/${size}x$size/apps/quillmont.png
  file "$icon" | grep -q "PNG image data, $size x $size," || fail "no icon of $size"
done
[ "$(readlink "$tree/usr/bin/quillmont")" = ../lib/quillmont/Contents/MacOS/Quillmont ] || fail "no command"
! dpkg-deb -c "$package" | awk '$2 != "root/root" || $1 ~ /^.....w|^........w/ && $1 !~ /^l/' | grep . ||
  fail "somebody else may write there"
! dpkg-deb -f "$package" Depends | grep -e -dev || fail "needs what only a build needs"
