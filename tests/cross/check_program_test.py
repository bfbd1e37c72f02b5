#!/usr/bin/env python3
"""Damages a copy of the built program, and sees that the checks find it.
Usage: check_program_test.py PROGRAM
"""
import pathlib
import struct
import sys
import tempfile
import unittest

import check_program
import macho


class Damage(unittest.TestCase):
    def setUp(self):
        self.data = bytearray(PROGRAM.read_bytes())

    def program(self):
        with tempfile.NamedTemporaryFile() as file:
            file.write(self.data)
            file.flush()
            return macho.Program(file.name)

    def assert_found(self, check, words):
        with self.assertRaisesRegex(macho.Malformed, words):
            check(self.program())

    def test_passes_undamaged(self):
        check_program.load(self.program())
        check_program.signature(self.program())

    def test_one_bit_breaks_the_signature(self):
        self.data[len(self.data) // 3] ^= 1
        self.assert_found(check_program.signature, "page .* is not the one")

    def test_another_processor(self):
        struct.pack_into("<I", self.data, 4, 0x01000007)
        self.assert_found(check_program.load, "64-bit Arm")

    def test_a_later_system(self):
        at = self.program().only(macho.BUILD_VERSION, "version")
        struct.pack_into("<I", self.data, at + 12, 14 << 16)
        self.assert_found(check_program.load, "14.0")

    def test_an_interface_of_old(self):
        at = self.program().only(macho.BUILD_VERSION, "version")
        struct.pack_into("<I", self.data, at + 16, 10 << 16 | 13 << 8)
        self.assert_found(check_program.load, "made for system 10.13")

    def test_an_unexpected_library(self):
        at = self.data.index(b"/usr/lib/libobjc.A.dylib")
        self.data[at + 9:at + 16] = b"another"
        self.assert_found(check_program.load, "it loads /usr/lib/another")

    def test_a_program_of_another_system(self):
        self.data[:4] = b"\x7fELF"
        with self.assertRaisesRegex(macho.Malformed, "no 64-bit Mach-O"):
            self.program()

    def test_a_symbol_from_another_library(self):
        at = self.data.index(b"_NSLog\0")
        self.data[at + 3:at + 6] = b"Lug"
        self.assert_found(check_program.symbols, "_NSLug")


if __name__ == "__main__":
    PROGRAM = pathlib.Path(sys.argv[1])
    unittest.main(argv=sys.argv[:1])
