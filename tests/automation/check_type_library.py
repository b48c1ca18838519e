"""Compares what a type library says with the page of operations.

The program type_library prints the library; `findings` says what is wrong with it: a member that is missing or one too
many, a kind, argument, type, direction or default that differs, a member without a help text, and whatever else
installed programs rely on.
"""

import re

# Automation's numbers of types.
TYPES = {
    "-": "24", "boolean": "11", "16-bit": "2", "32-bit": "3", "double": "5", "date": "7", "text": "8",
    "array of 32-bit": "array of 3", "Handicaps": "_Handicaps*", "HandiCalcSettings": "_HandiCalcSettings*",
    "collection of text": "_Collection*", "collection of EBUMembershipDetails": "_Collection*",
}
DEFAULTS = {"empty": "=8:", "False": "=11:0", "0": "=2:0", "-1.0": "=5:-1"}
# An argument that has no default and may be left out is any value, because only such a one can be missing. The number
# beside names is any value too, as it has always been for callers.
NO_DEFAULT = "none"
RESULTS_OF_ANY_TYPE = {"GetEBUNoAndNames"}
SET_BY_OBJECT = {"HandicalcOptions"}
METHOD, GET, LET, SET = "1", "2", "4", "8"
CLASSES = {
    "MembershipDatabase": "{88FA9BA1-A3F3-47AE-A57D-5FA91276F083}",
    "HandiCalcSettings": "{A3B4F5FB-D0EB-4421-9E25-857AFFB8976D}",
    "Handicaps": "{F3C7E0B0-CBD4-4089-9A14-805338C9C2DF}",
    "EBUMembershipDetails": "{54E639AF-5C44-4A8B-8429-AE59B5687EC2}",
}
INTERFACE = {"_MembershipDatabase": "{CD603914-4761-472B-BDA3-F543D0ABC6C1}"}
TKIND_COCLASS, TKIND_DISPATCH = "5", "4"
CAN_CREATE, DUAL, NONEXTENSIBLE, OLE_AUTOMATION, DISPATCHABLE = 0x2, 0x40, 0x80, 0x100, 0x1000
DEFAULT_INTERFACE = "1"


def wanted_members(page):
    """{interface: {(name, kind): (result, [arguments])}} of the page's tables, as type_library prints them."""
    wanted, name = {}, None
    for line in page.read_text().splitlines():
        if line.startswith("## "):
            name = "_" + line[3:].strip()
        cells = [cell.strip().replace("\\|", "|") for cell in re.split(r"(?<!\\)\|", line)[1:-1]]
        if len(cells) != 6 or not cells[0].startswith("`"):
            continue
        operation = cells[0].strip("`")
        kind = {"method": METHOD, "get": GET, "let": SET if operation in SET_BY_OBJECT else LET}[cells[1]]
        arguments = [] if cells[2] == "-" else [argument(text) for text in cells[2].split(";")]
        if kind in (LET, SET):
            arguments[-1] = (arguments[-1][0], None)  # a value has a name of its own in each language
        result = "12" if operation in RESULTS_OF_ANY_TYPE else TYPES[cells[3]]
        wanted.setdefault(name, {})[operation, kind] = result, arguments
    return wanted


def argument(text):
    match = re.fullmatch(r"\s*`(\w+)` (.+?) (in|out|in-out)(?: optional \((.+)\))?\s*", text)
    name, kind, direction, default = match.groups()
    type_name = TYPES[kind]
    if default is not None:
        if default == NO_DEFAULT:
            return "in optional 12", name
        return f"in optional {type_name}{DEFAULTS[default]}", name
    return ("in " + type_name, name) if direction == "in" else (f"in out {type_name}*", name)


def found_members(text):
    found, types, classes, name = {}, {}, {}, None
    for line in text.splitlines():
        kind, _, rest = line.partition("\t")
        parts = rest.split("\t")
        if kind == "type":
            name = parts[0]
            types[name] = parts[1:]
        elif kind == "implements":
            classes[name] = parts
        elif kind == "member":
            found.setdefault(name, []).append(parts)
    return found, types, classes


def members_findings(interface, wanted, found):
    seen = set()
    for name, _, kind, _, result, help_text, *arguments in found:
        label = f"{interface}.{name} (kind {kind})"
        seen.add((name, kind))
        if len(help_text) < 8:
            yield f"{label} has no help text"
        if (name, kind) not in wanted:
            yield f"{label} is not in the page"
            continue
        wanted_result, wanted_arguments = wanted[name, kind]
        if result != wanted_result:
            yield f"{label} has the result {result}, not {wanted_result}"
        got = [tuple(text.rsplit(" ", 1)) for text in arguments]
        if len(got) != len(wanted_arguments):
            yield f"{label} has the arguments {got}, not {wanted_arguments}"
            continue
        for (got_type, got_name), (wanted_type, wanted_name) in zip(got, wanted_arguments):
            if got_type != wanted_type or wanted_name not in (None, got_name):
                yield f"{label} has the argument {got_name}: {got_type}, not {wanted_name}: {wanted_type}"
    for missing in sorted(set(wanted) - seen):
        yield f"{interface}.{missing[0]} (kind {missing[1]}) is missing"


def types_findings(types, classes):
    for name, identifier in {**CLASSES, **INTERFACE}.items():
        if types.get(name, [None] * 4)[2] != identifier:
            yield f"{name} has not the identifier {identifier}"
    for name, (kind, flags, _, help_text) in types.items():
        if not help_text:
            yield f"{name} has no help text"
        if kind == TKIND_COCLASS:
            creatable = int(flags) & CAN_CREATE != 0
            if creatable != (name in CLASSES):
                yield f"{name} can{'' if creatable else 'not'} be created"
            if classes.get(name) != ["_" + name, DEFAULT_INTERFACE]:
                yield f"{name} implements {classes.get(name)}, not _{name} by default"
        elif kind == TKIND_DISPATCH:
            needed = DUAL | NONEXTENSIBLE | OLE_AUTOMATION | DISPATCHABLE
            if int(flags) & needed != needed:
                yield f"{name} has the flags {flags}"


def collection_findings(members):
    restricted, value, new_enum = 0x1, "0", "-4"
    shown = {(name, number, kind, int(flags) & restricted) for name, number, kind, flags, *_ in members}
    wanted = {("Count", "1", GET, 0), ("Item", value, GET, 0), ("_NewEnum", new_enum, GET, restricted)}
    if shown != wanted:
        yield f"_Collection has {sorted(shown)}, not {sorted(wanted)}"
    for name, *_, help_text in ((m[0], m[5]) for m in members):
        if not help_text:
            yield f"_Collection.{name} has no help text"


def findings(text, page):
    wanted = wanted_members(page)
    found, types, classes = found_members(text)
    result = []
    first = text.splitlines()[0].split("\t") if text.strip() else []
    if first[:3] != ["library", "TaviMembership", "1.0"] or len(first) < 4 or not first[3]:
        result.append(f"the library says of itself {first}")
    if set(wanted) != {"_" + name for name in CLASSES}:
        result.append(f"the page lists the classes {sorted(wanted)}")
    for interface, members in wanted.items():
        result += members_findings(interface, members, found.get(interface, []))
    result += types_findings(types, classes)
    result += collection_findings(found.get("_Collection", []))
    return result
