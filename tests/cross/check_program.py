#!/usr/bin/env python3
"""Checks a cross-built program as far as can be told without running it.

  check_program.py load PROGRAM...             it is what a Mac loads: kind, least system, libraries
  check_program.py signature PROGRAM...        every page is the one that was signed
  check_program.py symbols [--write] PROGRAM   each imported symbol comes from the library that
                                               expected_symbols.txt says; --write renews that file
"""
import difflib
import pathlib
import sys

import macho

EXPECTED = pathlib.Path(__file__).with_name("expected_symbols.txt")
FRAMEWORKS = "/System/Library/Frameworks/"
LIBRARIES = {
    FRAMEWORKS + "AppKit.framework/Versions/C/AppKit",
    FRAMEWORKS + "CoreFoundation.framework/Versions/A/CoreFoundation",
    FRAMEWORKS + "Foundation.framework/Versions/C/Foundation",
    "/usr/lib/libSystem.B.dylib",
    "/usr/lib/libobjc.A.dylib",
}


def require(truth, complaint):
    if not truth:
        raise macho.Malformed(complaint)


def load(program):
    require(program.cpu == macho.ARM64, "it is not for a 64-bit Arm Mac")
    require(program.kind == macho.EXECUTE, "it is no executable")
    require(program.flags & macho.FLAG_PIE, "it is not position-independent")
    platform, least, made_for = program.version()
    require((platform, least) == (macho.PLATFORM_MACOS, "13.0"),
            f"it asks for platform {platform}, system {least}")
    # The system treats a program that was made for an old one as it was treated then.
    require(float(made_for) >= 13, f"it was made for system {made_for}")
    program.only(macho.MAIN, "LC_MAIN")
    require(not program.at(macho.RPATH), "it searches for libraries along a path")
    for library in program.libraries():
        require(library in LIBRARIES, f"it loads {library}")


def signature(program):
    program.check_signature()


def symbols(program, write=False):
    lines = [f"{symbol} {library}{' weak' if weak else ''}\n"
             for symbol, library, weak in program.bindings()]
    if write:
        EXPECTED.write_text("".join(lines))
    expected = EXPECTED.read_text().splitlines(keepends=True)
    changes = "".join(difflib.unified_diff(expected, lines, "expected", "imported", n=0))
    require(not changes, f"its imports differ; if that is right, renew the list with --write\n{changes}")


def main(check, *arguments):
    checks = {"load": load, "signature": signature, "symbols": symbols}
    options = {"write": True} if "--write" in arguments else {}
    failed = False
    for path in [argument for argument in arguments if argument != "--write"]:
        try:
            checks[check](macho.Program(path), **options)
        except (macho.Malformed, OSError) as problem:
            print(f"{path}: {problem}", file=sys.stderr)
            failed = True
    return failed


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
