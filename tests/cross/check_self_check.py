#!/usr/bin/env python3
"""Checks that the self-check's table, platform/macos/system_interfaces.h, names every class and
method of the system that a cross-built program uses, and nothing more.

Used is what the stub SDK declares and the program has a selector for.
Usage: check_self_check.py [--write] ZIG-FOLDER PROGRAM    --write renews the table
"""
import difflib
import pathlib
import sys
import textwrap

import macho
import sdk_declarations

TABLE = pathlib.Path(__file__).resolve().parents[2] / "platform/macos/system_interfaces.h"
HEAD = """// What of the system's classes the host uses, for the self-check. A script of tests/cross compares
// this with the built program, and writes it anew.
#pragma once

#include "platform/macos/self_check.h"

namespace quillmont {

inline constexpr SystemInterface kSystemInterfaces[] = {
"""
TAIL = """};

}  // namespace quillmont
"""


def declared(entry, sdk):
    """The messages that a class declares, and those of the protocols that it adopts."""
    for part in [entry, *(sdk.types[name] for name in entry.protocols if name in sdk.types)]:
        for method in part.methods:
            yield ("+" if method.is_class else "-") + method.selector
        for each in part.properties:
            side = "+" if each.is_class else "-"
            yield side + each.getter
            if each.writable:
                yield f"{side}set{each.name[0].upper()}{each.name[1:]}:"


def table(sdk, selectors):
    result = HEAD
    for name, entry in sorted(sdk.types.items()):
        used = sorted({message for message in declared(entry, sdk) if message[1:] in selectors})
        if entry.is_protocol or not used:
            continue
        lines = textwrap.wrap(" ".join(used), width=88, break_on_hyphens=False,
                              break_long_words=False)
        quoted = "\n".join(f'     "{line} "' for line in lines[:-1])
        last = f'     "{lines[-1]}"'
        result += f'    {{"{name}",\n' + (quoted + "\n" if quoted else "") + last + "},\n"
    return result + TAIL


def main(*arguments):
    zig, program = [argument for argument in arguments if argument != "--write"]
    wanted = table(sdk_declarations.read(zig), macho.Program(program).selectors())
    if "--write" in arguments:
        TABLE.write_text(wanted)
    # However the table is laid out, its words count.
    there, wanted = TABLE.read_text().split(), wanted.split()
    strip = str.maketrans("", "", '",{}')
    there, wanted = ([word.translate(strip) for word in words] for words in (there, wanted))
    changes = [line for line in difflib.unified_diff(there, wanted, lineterm="", n=0)
               if line[:1] in "+-" and line[1:] not in ("", "++ ", "-- ")]
    if changes:
        print("\n".join(["the self-check's table is not what the program uses:", *changes]))
    return bool(changes)


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
