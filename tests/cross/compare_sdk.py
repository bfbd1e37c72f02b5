#!/usr/bin/env python3
"""Compares the stub SDK with the published typings of the real one: each selector, class side,
coarse type, superclass and constant.

Neither the compiler nor the linker can tell a selector that was misremembered: only this can. What
differs for a reason stands in explained_differences.txt, as a line of the report, ' | ' and the
reason; anything else is an error, and so is an explanation that explains nothing.
Usage: compare_sdk.py ZIG-FOLDER TYPINGS-FOLDER
"""
import pathlib
import re
import sys

import sdk_declarations
import typings

EXPLAINED = pathlib.Path(__file__).with_name("explained_differences.txt")


def native_kind(text):
    """Coarse kind of a type as the stub SDK spells it."""
    text = re.sub(r"\b(const|_Nullable|_Nonnull|_Null_unspecified|__kindof|__unsafe_unretained"
                  r"|__weak|__strong|volatile|oneway)\b", "", text).strip()
    if "(^" in text or "(*" in text:
        return "function"
    if text == "void":
        return "void"
    if text in ("BOOL", "bool"):
        return "boolean"
    if text in ("SEL", "SEL *"):
        return "string"
    if re.match(r"NSString\b.*\*$", text):
        return "string"
    if text in ("id", "instancetype", "Class") or re.match(r"(id|Class)\s*<", text):
        return "object"
    if text.endswith("*"):
        name = text.rstrip("* ").split("<")[0]
        return "object" if re.match(r"NS\w+$", name) and name not in PLAIN and text.count("*", len(
            text.rstrip("* "))) == 1 else "pointer"
    if text.removeprefix("struct ") in STRUCTS:
        return "struct"
    return "object" if text.startswith(("ObjectType", "KeyType")) else "number"


STRUCTS = {"CGPoint", "CGSize", "CGRect", "NSPoint", "NSSize", "NSRect", "NSEdgeInsets", "_NSRange",
           "NSRange"}
# What a pointer of this name points to is no object.
PLAIN = {"NSZone", "NSRange", "NSFastEnumerationState", "NSPropertyListFormat"}
POINTERS = {"interop.Pointer", "interop.PointerConvertible"}


def typed_kind(text):
    """Coarse kind of a type as the typings spell it."""
    text = re.sub(r"\s*\|\s*(null|undefined)\b", "", text).strip()
    if "=>" in text:
        return "function"
    if text.startswith("interop.Enum<"):
        return "number"
    if text in ("void", "boolean", "number", "string"):
        return text
    if text in STRUCTS:
        return "struct"
    if text in POINTERS or "unknown" in text:
        return "pointer"
    return "object"


def agree(native, typed):
    native, typed = native_kind(native), typed_kind(typed)
    # The typings hand over every C string and every buffer as an object or as text.
    return native == typed or (native == "pointer" and typed in ("object", "string"))


def member_name(selector):
    first, *others = [part for part in selector.split(":") if part]
    return first + "".join(part[0].upper() + part[1:] for part in others)


class Comparison:
    def __init__(self, sdk, published):
        self.sdk, self.published, self.differences, self.count = sdk, published, [], 0

    def differ(self, what, how):
        self.differences.append(f"{what}: {how}")

    def run(self):
        for name, entry in self.sdk.types.items():
            self.compare_type(name.lstrip("@"), entry)
        for name, (owner, value) in self.sdk.constants.items():
            self.compare_constant(name, owner, value)
        for name, native in self.sdk.variables.items():
            self.count += 1
            typed = self.published.constants.get(name)
            if typed is None:
                self.differ(name, "there is no such constant")
            elif not agree(native, typed):
                self.differ(name, f"is {native} here, {typed} there")
        for name, (result, parameters, _) in self.sdk.functions.items():
            self.compare_function(name, result, parameters)
        return self.differences

    def compare_type(self, name, entry):
        self.count += 1
        known = self.published.protocols if entry.is_protocol else self.published.types
        if name not in known and name != "NSObject":
            name = name + "Protocol" if name + "Protocol" in known else name
        if name not in known:
            self.differ(name, "there is no such " + ("protocol" if entry.is_protocol else "class"))
            return
        if not entry.is_protocol and entry.parent not in (*known[name].parents[:1], ""):
            self.differ(name, f"inherits {entry.parent} here, {known[name].parents[:1]} there")
        for method in entry.methods:
            self.compare_method(name, method)
        for each in entry.properties:
            self.compare_property(name, each)

    def compare_method(self, owner, method):
        self.count += 1
        what = f"{'+' if method.is_class else '-'}[{owner} {method.selector}]"
        found = self.published.find(owner, member_name(method.selector), method.is_class)
        if not found:
            self.compare_accessor(what, owner, method)
            return
        native, typed = [method.result, *method.parameters], [found.type, *found.parameters]
        # The typings leave out the variable part, and a trailing pointer for the error.
        if len(native) != len(typed) and found.kind == "method":
            self.differ(what, f"has {len(native) - 1} parameters here, {len(typed) - 1} there")
        for number, (here, there) in enumerate(zip(native, typed)):
            if not agree(here, there):
                place = f"parameter {number}" if number else "the result"
                self.differ(what, f"{place} is {here} here, {there} there")

    def compare_accessor(self, what, owner, method):
        """A setter or a getter that is declared as such here and as a property there."""
        setter = re.fullmatch(r"set([A-Z])(\w*):", method.selector)
        getter = re.fullmatch(r"is([A-Z])(\w*)", method.selector)
        part = setter or getter
        found = part and self.published.find(owner, part[1].lower() + part[2], method.is_class)
        if not found or (setter and not found.writable):
            self.differ(what, "there is no such method")
        elif not agree(method.parameters[0] if setter else method.result, found.type):
            self.differ(what, f"its type is {found.type} there")

    def compare_property(self, owner, each):
        self.count += 1
        what = f"{owner}.{each.name}" + (" (class)" if each.is_class else "")
        found = self.published.find(owner, each.name, each.is_class)
        if not found:
            self.differ(what, "there is no such property")
            return
        if not agree(each.type, found.type):
            self.differ(what, f"is {each.type} here, {found.type} there")
        if each.writable and not found.writable:
            self.differ(what, "cannot be set there")
        # A getter of another name is a member of its own there, where it is published at all.
        if each.getter != each.name and not self.published.find(owner, each.getter, each.is_class):
            self.differ(what, f"its getter is {each.getter} here, which is not published")

    def compare_constant(self, name, owner, value):
        self.count += 1
        tables = self.published.enumerations
        owner = owner.removesuffix("_")
        # The typings leave out what all names of an enumeration begin with, or end with.
        found = [v for key, v in tables.get(owner, {}).items()
                 if name.endswith(key) or
                 (name.startswith("NS" + key) and name.removeprefix("NS" + key) in owner)]
        if not found and name in self.published.constants:
            self.differ(name, "its value is not published")
        elif not found:
            self.differ(name, "there is no such constant")
        elif value % 2**64 not in [each % 2**64 for each in found]:  # all bits set, or -1
            self.differ(name, f"is {value} here, {found[0]} there")

    def compare_function(self, name, result, parameters):
        self.count += 1
        found = self.published.functions.get(name)
        if not found:
            self.differ(name, "there is no such function")
            return
        native, typed = [result, *parameters], [found.type, *found.parameters]
        if len(native) != len(typed) or not all(map(agree, native, typed)):
            self.differ(name, f"is {native} here, {typed} there")


def explanations():
    lines = EXPLAINED.read_text().splitlines()
    return {line.split(" | ")[0]: line.split(" | ")[1]
            for line in lines if line and not line.startswith("#")}


def main(zig, folder):
    comparison = Comparison(sdk_declarations.read(zig), typings.read(pathlib.Path(folder)))
    differences, explained = set(comparison.run()), explanations()
    for difference in sorted(differences - set(explained)):
        print(f"differs: {difference}")
    for unused in sorted(set(explained) - differences):
        print(f"explains nothing: {unused}")
    print(f"{comparison.count} declarations compared, {len(differences)} differ, "
          f"{len(differences & set(explained))} of them for a known reason")
    return differences != set(explained)


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
