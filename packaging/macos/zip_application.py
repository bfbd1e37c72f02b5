#!/usr/bin/env python3
"""Packs an application into a zip file, and prints its SHA-256.

Names in order, one fixed time, and two sets of permissions make the file depend on nothing but what
is packed.
Usage: zip_application.py Quillmont.app FILE.zip
"""
import hashlib
import os
import pathlib
import stat
import sys
import zipfile

TIME = (2020, 1, 1, 0, 0, 0)
UNIX = 3


def entry(name, mode):
    info = zipfile.ZipInfo(name, TIME)
    info.create_system = UNIX
    info.external_attr = mode << 16
    info.compress_type = zipfile.ZIP_DEFLATED
    return info


def pack(application, archive):
    parts = sorted(application.rglob("*"), key=lambda part: part.parts)
    for part in [application, *parts]:
        name = part.relative_to(application.parent).as_posix()
        if part.is_symlink():
            archive.writestr(entry(name, stat.S_IFLNK | 0o755), os.readlink(part))
        elif part.is_dir():
            archive.writestr(entry(name + "/", stat.S_IFDIR | 0o755), b"")
        else:
            executable = part.stat().st_mode & stat.S_IXUSR
            mode = stat.S_IFREG | (0o755 if executable else 0o644)
            archive.writestr(entry(name, mode), part.read_bytes(), compresslevel=9)


def main(application, target):
    application, target = pathlib.Path(application).resolve(), pathlib.Path(target)
    if not (application / "Contents" / "Info.plist").is_file():
        sys.exit(f"zip_application: {application} is no application")
    partial = target.with_name(target.name + ".new")
    with zipfile.ZipFile(partial, "w") as archive:
        pack(application, archive)
    partial.replace(target)
    print(f"{hashlib.sha256(target.read_bytes()).hexdigest()}  {target}")


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(*sys.argv[1:])
