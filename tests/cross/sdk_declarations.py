"""Lists what the stub SDK declares, as the compiler itself understands it."""
import dataclasses
import json
import pathlib
import subprocess

HERE = pathlib.Path(__file__).resolve().parent
SDK = HERE / "sdk"
PREFIXES = ("NS", "CF", "kCF")


@dataclasses.dataclass
class Method:
    selector: str
    is_class: bool
    result: str
    parameters: list


@dataclasses.dataclass
class Property:
    name: str
    is_class: bool
    type: str
    getter: str
    writable: bool


@dataclasses.dataclass
class Type:
    parent: str = ""
    is_protocol: bool = False
    protocols: list = dataclasses.field(default_factory=list)
    methods: list = dataclasses.field(default_factory=list)
    properties: list = dataclasses.field(default_factory=list)


@dataclasses.dataclass
class Sdk:
    types: dict = dataclasses.field(default_factory=dict)
    constants: dict = dataclasses.field(default_factory=dict)  # name: (enumeration, value)
    variables: dict = dataclasses.field(default_factory=dict)  # name: type
    functions: dict = dataclasses.field(default_factory=dict)  # name: (result, parameters, inline)


def spelled(type_node):
    return type_node.get("desugaredQualType", type_node["qualType"])


def value_of(node):
    """The value of a constant's initialiser, where the compiler has worked it out."""
    if "value" in node and node["kind"] == "ConstantExpr":
        return int(node["value"])
    for inner in node.get("inner", []):
        found = value_of(inner)
        if found is not None:
            return found
    return None


def add_members(entry, node):
    for inner in node.get("inner", []):
        if inner.get("isImplicit"):
            continue
        if inner["kind"] == "ObjCMethodDecl":
            entry.methods.append(Method(
                inner["name"], not inner["instance"], spelled(inner["returnType"]),
                [spelled(each["type"]) for each in inner.get("inner", [])
                 if each["kind"] == "ParmVarDecl"]))
        elif inner["kind"] == "ObjCPropertyDecl":
            getter = inner.get("getter", {}).get("name", inner["name"])
            entry.properties.append(Property(inner["name"], bool(inner.get("class")),
                                             spelled(inner["type"]), getter,
                                             not inner.get("readonly")))


def add_type(sdk, node, kind):
    if kind == "ObjCCategoryDecl":
        name = node["interface"]["name"]
    else:
        name = ("@" if kind == "ObjCProtocolDecl" else "") + node["name"]
    # The compiler brings the root class itself.
    if not name.lstrip("@").startswith(PREFIXES) or name == "@NSObject":
        return
    entry = sdk.types.setdefault(name, Type(is_protocol=name.startswith("@")))
    if kind == "ObjCInterfaceDecl" and name != "NSObject":
        entry.parent = node.get("super", {}).get("name", "") or entry.parent
        entry.protocols += ["@" + each["name"] for each in node.get("protocols", [])]
    if kind == "ObjCCategoryDecl" or name != "NSObject":
        add_members(entry, node)


def add(sdk, node, within=""):
    kind, name = node["kind"], node.get("name", "")
    if kind in ("ObjCInterfaceDecl", "ObjCCategoryDecl", "ObjCProtocolDecl"):
        add_type(sdk, node, kind)
    elif kind == "LinkageSpecDecl":
        for inner in node.get("inner", []):
            add(sdk, inner)
    elif kind == "EnumDecl":
        value = -1
        for inner in node.get("inner", []):
            if inner["kind"] == "EnumConstantDecl":
                found = value_of(inner)
                value = value + 1 if found is None else found
                if inner["name"].startswith(PREFIXES):
                    owner = name or inner["type"]["qualType"]
                    sdk.constants[inner["name"]] = owner, value
    elif kind == "VarDecl" and name.startswith(PREFIXES):
        sdk.variables[name] = spelled(node["type"])
    elif kind == "FunctionDecl" and name.startswith(PREFIXES):
        result = node["type"]["qualType"].split("(")[0].strip()
        parameters = [spelled(each["type"]) for each in node.get("inner", [])
                      if each["kind"] == "ParmVarDecl"]
        sdk.functions[name] = result, parameters, bool(node.get("inline"))


def read(zig, extra=""):
    """What <AppKit/AppKit.h> declares, and the text `extra` after it. `zig` is the cross compiler's
    folder, which has Darwin's C headers."""
    command = ["clang++-19", "-std=c++20", "-x", "objective-c++", "-target", "arm64-apple-macos13.0",
               "-fblocks", "-fsyntax-only", "-nostdinc", "-nostdinc++",
               "-isystem", f"{zig}/lib/include",
               "-isystem", f"{zig}/lib/libc/include/any-macos-any",
               "-F", f"{SDK}/System/Library/Frameworks", "-Xclang", "-ast-dump=json", "-"]
    source = f"#import <AppKit/AppKit.h>\n{extra}\n"
    dump = subprocess.run(command, input=source, capture_output=True, text=True, check=False)
    if dump.returncode != 0:
        raise SystemExit(f"the stub SDK does not compile:\n{dump.stderr}")
    sdk = Sdk()
    for node in json.loads(dump.stdout)["inner"]:
        add(sdk, node)
    return sdk
