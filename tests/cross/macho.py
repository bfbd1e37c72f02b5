"""Reads as much of a 64-bit Mach-O program as the checks of the cross build look at."""
import hashlib
import struct

MAGIC, ARM64, EXECUTE = 0xFEEDFACF, 0x0100000C, 2
FLAG_PIE = 0x200000
SEGMENT, LOAD_DYLIB, CODE_SIGNATURE, DYLD_INFO_ONLY = 0x19, 0xC, 0x1D, 0x80000022
LOAD_WEAK_DYLIB, RPATH, REEXPORT_DYLIB, MAIN, BUILD_VERSION = (
    0x80000018, 0x8000001C, 0x8000001F, 0x80000028, 0x32)
PLATFORM_MACOS = 1
SIGNATURE, CODE_DIRECTORY, SHA256 = 0xFADE0CC0, 0xFADE0C02, 2
ADHOC, LINKER_SIGNED = 0x2, 0x20000


class Malformed(Exception):
    """The file is no program as a Mac would load it."""


def text_at(data, at):
    return data[at:data.index(b"\0", at)].decode()


class Program:
    def __init__(self, path):
        with open(path, "rb") as file:
            self.data = file.read()
        if len(self.data) < 32:
            raise Malformed("the file is too short")
        magic, self.cpu, _, self.kind, count, _, self.flags, _ = struct.unpack_from("<8I", self.data)
        if magic != MAGIC:
            raise Malformed("this is no 64-bit Mach-O file")
        self.commands, at = [], 32
        for _ in range(count):
            command, size = struct.unpack_from("<2I", self.data, at)
            self.commands.append((command, at, size))
            at += size

    def at(self, wanted):
        return [at for command, at, _ in self.commands if command == wanted]

    def only(self, wanted, name):
        found = self.at(wanted)
        if len(found) != 1:
            raise Malformed(f"{len(found)} {name} commands, not one")
        return found[0]

    def version(self):
        """Platform, the least system version that the program asks for, and that of the interface
        that it was made for."""
        platform, *versions = struct.unpack_from(
            "<3I", self.data, self.only(BUILD_VERSION, "LC_BUILD_VERSION") + 8)
        return platform, *(f"{version >> 16}.{version >> 8 & 255}" for version in versions)

    def libraries(self):
        """Install names, in the order that bindings count them, from 1."""
        kinds = (LOAD_DYLIB, LOAD_WEAK_DYLIB, REEXPORT_DYLIB)
        return [text_at(self.data, at + struct.unpack_from("<I", self.data, at + 8)[0])
                for command, at, _ in self.commands if command in kinds]

    def section(self, name):
        """The bytes of a section; none if there is no such section."""
        for start in self.at(SEGMENT):
            for number in range(struct.unpack_from("<I", self.data, start + 64)[0]):
                at = start + 72 + 80 * number
                if self.data[at:at + 16].rstrip(b"\0").decode() == name:
                    size, offset = struct.unpack_from("<QI", self.data, at + 40)
                    return self.data[offset:offset + size]
        return b""

    def selectors(self):
        """Every message that the program sends or understands."""
        return {name.decode() for name in self.section("__objc_methname").split(b"\0") if name}

    def bindings(self):
        """(symbol, install name, weak) of everything that the loader has to find elsewhere."""
        fields = struct.unpack_from("<10I", self.data, self.only(DYLD_INFO_ONLY, "LC_DYLD_INFO") + 8)
        libraries, found = self.libraries(), set()
        for start, size in (fields[2:4], fields[6:8]):
            for symbol, ordinal, weak in bind_opcodes(self.data[start:start + size]):
                if not 1 <= ordinal <= len(libraries):
                    raise Malformed(f"{symbol} is bound to library {ordinal}, which there is not")
                found.add((symbol, libraries[ordinal - 1], weak))
        return sorted(found)

    def check_signature(self):
        """Recomputes the hash of every page."""
        start, _ = struct.unpack_from("<2I", self.data, self.only(CODE_SIGNATURE, "signature") + 8)
        magic, _, count = struct.unpack_from(">3I", self.data, start)
        if magic != SIGNATURE:
            raise Malformed("the code signature is none")
        slots = struct.iter_unpack(">2I", self.data[start + 12:start + 12 + 8 * count])
        directory = next((start + offset for kind, offset in slots if kind == 0), None)
        if directory is None:
            raise Malformed("the code signature has no directory")
        (magic, _, _, flags, hashes, _, _, pages, limit, size, kind, _, page) = struct.unpack_from(
            ">9I4B", self.data, directory)
        if magic != CODE_DIRECTORY or kind != SHA256 or size != 32:
            raise Malformed("the code directory is of another kind than SHA-256")
        if flags & (ADHOC | LINKER_SIGNED) != ADHOC | LINKER_SIGNED:
            raise Malformed(f"signature flags {flags:#x}: not the linker's own")
        if limit != start or pages != -(-limit >> page):
            raise Malformed("the signature does not cover the whole program")
        for number in range(pages):
            begin = number << page
            actual = hashlib.sha256(self.data[begin:min(begin + (1 << page), limit)]).digest()
            at = directory + hashes + number * size
            if actual != self.data[at:at + size]:
                raise Malformed(f"page {number} is not the one that was signed")


def bind_opcodes(code):
    """Runs the loader's binding program; yields (symbol, library ordinal, weak)."""
    at, ordinal, symbol, weak = 0, 0, "", False

    def number():
        nonlocal at
        value = shift = 0
        while True:
            byte = code[at]
            at += 1
            value |= (byte & 0x7F) << shift
            shift += 7
            if byte < 0x80:
                return value

    while at < len(code):
        opcode, immediate = code[at] & 0xF0, code[at] & 0x0F
        at += 1
        if opcode == 0x10:
            ordinal = immediate
        elif opcode == 0x20:
            ordinal = number()
        elif opcode == 0x30:
            ordinal = immediate - 16 if immediate else 0
        elif opcode == 0x40:
            symbol, weak = text_at(code, at), bool(immediate & 1)
            at += len(symbol.encode()) + 1
        elif opcode in (0x60, 0x70, 0x80):
            number()
        elif opcode in (0x90, 0xA0, 0xB0, 0xC0):
            yield symbol, ordinal, weak
            for _ in range({0xA0: 1, 0xC0: 2}.get(opcode, 0)):
                number()
