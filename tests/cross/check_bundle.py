#!/usr/bin/env python3
"""Checks what stands in a built Quillmont.app beside the program itself.

  check_bundle.py plist VERSION APP    Info.plist says what the system has to know
  check_bundle.py files APP            everything is there, and what has to be run can be
  check_bundle.py icon ICNS            the icon holds every size
"""
import pathlib
import plistlib
import struct
import sys

PROGRAM = "Contents/MacOS/Quillmont"
SCRIPT = "Contents/Resources/uninstall.sh"
ICON = "Contents/Resources/Quillmont.icns"
FILES = {"Contents/Info.plist", PROGRAM, SCRIPT, ICON}
ICON_SIZES = {b"ic04": 16, b"ic05": 32, b"ic07": 128, b"ic08": 256, b"ic09": 512, b"ic10": 1024,
              b"ic11": 32, b"ic12": 64, b"ic13": 256, b"ic14": 512}


def check_plist(version, application):
    values = plistlib.loads((application / "Contents" / "Info.plist").read_bytes())
    expected = {
        "CFBundleDevelopmentRegion": "zh-Hans",
        "CFBundleExecutable": "Quillmont",
        "CFBundleIconFile": "Quillmont",
        "CFBundleIdentifier": "com.norwaldex.Quillmont",
        "CFBundleInfoDictionaryVersion": "6.0",
        "CFBundleLocalizations": ["zh-Hans"],
        "CFBundleName": "Quillmont",
        "CFBundlePackageType": "APPL",
        "CFBundleShortVersionString": version,
        "CFBundleVersion": version,
        "LSMinimumSystemVersion": "13.0",
        "LSUIElement": True,
        "NSHighResolutionCapable": True,
        "NSPrincipalClass": "NSApplication",
    }
    for key, value in expected.items():
        yield key, values.get(key) == value, f"is {values.get(key)!r}, not {value!r}"
    # With one of these the program could be ended without being told.
    for key in ("NSSupportsAutomaticTermination", "NSSupportsSuddenTermination"):
        yield key, not values.get(key), "must not be set"


def check_files(application):
    found = {part.relative_to(application).as_posix()
             for part in application.rglob("*") if not part.is_dir()}
    yield "the files", found == FILES, f"are {sorted(found)}, not {sorted(FILES)}"
    for name in (PROGRAM, SCRIPT):
        mode = (application / name).stat().st_mode
        yield name, mode & 0o555 == 0o555, f"cannot be run: mode {mode:o}"
    here = pathlib.Path(__file__).resolve().parents[2] / "packaging"
    for name, source in ((SCRIPT, here / "resources" / "uninstall.sh"),
                         (ICON, here / "macos" / "Quillmont.icns")):
        yield name, (application / name).read_bytes() == source.read_bytes(), f"is not {source.name}"


def pixels_of(data, size):
    """What an element really holds: a PNG's own size, or the size that its packed pixels fill."""
    if data[:8] == b"\x89PNG\r\n\x1a\n":
        width, height = struct.unpack_from(">2I", data, 16)
        return width if width == height else None
    if data[:4] != b"ARGB":
        return None
    count, at = 0, 4
    while at < len(data):
        run = data[at]
        count += run + 1 if run < 128 else run - 125
        at += run + 2 if run < 128 else 2
    return size if count == 4 * size * size and at == len(data) else None


def check_icon(icon):
    data = icon.read_bytes()
    magic, length = struct.unpack_from(">4sI", data)
    yield "the icon", magic == b"icns" and length == len(data), "is no whole .icns file"
    found, at = {}, 8
    while at < len(data):
        kind, length = struct.unpack_from(">4sI", data, at)
        found[kind] = pixels_of(data[at + 8:at + length], ICON_SIZES.get(kind, 0))
        at += max(length, 8)
    yield "the sizes", found == ICON_SIZES, f"are {found}, not {ICON_SIZES}"


def main(check, *arguments):
    *values, path = arguments
    checks = {"plist": check_plist, "files": check_files, "icon": check_icon}
    wrong = [f"{path}: {what} {complaint}"
             for what, right, complaint in checks[check](*values, pathlib.Path(path)) if not right]
    print("\n".join(wrong), file=sys.stderr, end="\n" if wrong else "")
    return bool(wrong)


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
