"""Reads the published typings of the system's frameworks: classes, protocols, enumerations,
constants and functions, as far as the stub SDK can be compared with them."""
import dataclasses
import re

FRAMEWORKS = ("Runtime", "CoreFoundation", "CoreGraphics", "Foundation", "AppKit")


@dataclasses.dataclass
class Member:
    kind: str  # "method" or "property"
    type: str  # what is returned, or the property's type
    parameters: list
    writable: bool = False


@dataclasses.dataclass
class Type:
    """A class or a protocol. The keys of members are (name, whether it is the class's own)."""
    parents: list
    members: dict = dataclasses.field(default_factory=dict)


@dataclasses.dataclass
class Typings:
    types: dict = dataclasses.field(default_factory=dict)
    protocols: dict = dataclasses.field(default_factory=dict)
    enumerations: dict = dataclasses.field(default_factory=dict)
    constants: dict = dataclasses.field(default_factory=dict)
    functions: dict = dataclasses.field(default_factory=dict)

    def find(self, owner, name, is_static):
        """The declaration in a class or what it inherits; None if there is none."""
        waiting, seen = [owner], set()
        while waiting:
            current = waiting.pop(0)
            if current in seen:
                continue
            seen.add(current)
            for table in (self.types, self.protocols):
                if current in table:
                    member = table[current].members.get((name, is_static))
                    if member:
                        return member
                    waiting += table[current].parents
        return None


def split_parameters(text):
    """The types of a parameter list."""
    types, depth, current = [], 0, ""
    for char in text + ",":
        depth += char in "(<{["
        depth -= char in ")}]" or (char == ">" and not current.endswith("="))
        if char == "," and depth == 0:
            if ":" in current:
                types.append(current.split(":", 1)[1].strip())
            current = ""
        else:
            current += char
    return types


def closing(text, at):
    depth = 0
    for place in range(at, len(text)):
        depth += text[place] == "("
        depth -= text[place] == ")"
        if depth == 0:
            return place
    return len(text)


# How a class method that makes an instance of its own class begins.
SELF_TYPED = re.compile(r"<(?:\w+, )*This extends [^>]*=> any>\(this: This(, )?")
MEMBER = re.compile(r"(static )?(readonly |get |set )?([\w$]+)\??(?:<[^(]*>)?([(:])")


def add_member(members, line):
    line = SELF_TYPED.sub("(", line)
    found = MEMBER.match(line)
    if not found:
        return
    is_static, access, name, mark = found.groups()
    key = name, bool(is_static)
    end = closing(line, found.end() - 1) if mark == "(" else 0
    if access == "set ":
        if key in members:
            members[key].writable = True
    elif mark == "(" and access != "get ":
        result = line[end + 1:].lstrip(": ").rstrip(";")
        members.setdefault(key, Member("method", result, split_parameters(line[found.end():end])))
    else:
        type_text = line[end + 1:] if access == "get " else line[found.end():]
        writable = access is None
        members.setdefault(key, Member("property", type_text.lstrip(": ").rstrip(";"), [], writable))


def read_declaration(result, lines, at):
    """Reads what begins at a line; returns the line after it."""
    line = lines[at]
    head = re.match(r"declare (class|interface|const|function|enum) ([\w$]+)", line)
    if not head:
        return at + 1
    kind, name = head.groups()
    if kind == "function":
        start = line.index("(")
        end = closing(line, start)
        result.functions.setdefault(
            name, Member("function", line[end + 1:].lstrip(": ").rstrip(";"),
                         split_parameters(line[start + 1:end])))
        return at + 1
    if not line.endswith("{"):
        result.constants.setdefault(name, line[head.end():].lstrip(": ").rstrip(";"))
        return at + 1
    body = at + 1
    while lines[body] not in ("}", "};"):
        body += 1
    inside = [entry.strip() for entry in lines[at + 1:body]]
    if kind in ("class", "interface"):
        bases = re.sub(r"<[^{]*?>(?=[ ,{])", "", line[head.end():-1])
        parents = re.findall(r"[\w$]+", re.sub(r"\b(extends|implements)\b", " ", bases))
        table = result.types if kind == "class" else result.protocols
        entry = table.setdefault(name, Type([]))
        entry.parents += parents
        for text in inside:
            add_member(entry.members, text)
    else:
        result.enumerations.setdefault(name, {
            key: int(value) for key, value in
            (text.rstrip(",").split(": ") for text in inside if re.match(r"\w+: -?\d+,?$", text))})
    return body + 1


def read(folder):
    result = Typings()
    for framework in FRAMEWORKS:
        lines = (folder / f"{framework}.d.ts").read_text().splitlines()
        at = 0
        while at < len(lines):
            at = read_declaration(result, lines, at)
    return result
