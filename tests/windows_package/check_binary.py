#!/usr/bin/env python3
"""Checks what a Windows program or library says about itself.

    check_binary.py x64|x86 FILE VERSION [--exports NAME...] [--type-library FILE] [--largest BYTES --strip PROGRAM]

FILE is of the kind, exports exactly the names given, imports from libraries only that belong to every Windows from 7 on,
says that it is for those, and carries its name, the version and the type library, which is of the same kind. Without
its debugging symbols it has no more bytes than the largest number.
"""

import argparse
import pathlib
import struct
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True
from program_file import ProgramFile  # noqa: E402

SYSTEM = {"advapi32.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll", "oleaut32.dll", "shell32.dll", "user32.dll"}
# Functions that Windows 7 does not have and that run-time libraries are fond of.
NEWER = {"CreateFile2", "GetSystemTimePreciseAsFileTime", "SetThreadDescription", "WaitOnAddress", "WakeByAddressAll",
         "WakeByAddressSingle", "GetOverlappedResultEx", "GetCurrentThreadStackLimits", "CopyFile2"}
MACHINES = {"x64": 0x8664, "x86": 0x14C}
# What type libraries call 32 and 64 bits.
SYSTEM_KINDS = {"x64": 3, "x86": 1}
WINDOWS_7 = (6, 1)
IS_LIBRARY = 0x2000
# Loaded anywhere, no code in data.
PROTECTIONS = 0x140


def kind_of_type_library(content):
    magic, flags = struct.unpack_from("<4s16xI", content)
    return flags & 0xF if magic == b"MSFT" else None


def findings(given, program):
    wanted = set(given.exports)
    imports = program.imports()
    yield program.machine == MACHINES[given.kind], f"the machine is {program.machine:x}"
    yield program.is_wide == (given.kind == "x64"), "the header is of the other kind"
    yield bool(program.flags & IS_LIBRARY) == bool(wanted), "library and program are mixed up"
    yield program.exports() == wanted, f"exports {sorted(program.exports())}, not {sorted(wanted)}"
    yield bool(imports), "the imports could not be read"
    yield imports.keys() <= SYSTEM, f"needs {sorted(imports.keys() - SYSTEM)}"
    newer = NEWER & set().union(*imports.values())
    yield not newer, f"needs a Windows that has {sorted(newer)}"
    yield program.system_version == WINDOWS_7 and program.subsystem_version == WINDOWS_7, \
        f"is made for Windows {program.system_version}, {program.subsystem_version}"
    yield program.protections & PROTECTIONS == PROTECTIONS, f"the protections are {program.protections:x}"
    version = program.version()
    yield version.get("FileVersion") == version.get("ProductVersion") == given.version, f"the version is {version}"
    yield version.get("OriginalFilename") == given.file.name, f"the name is {version.get('OriginalFilename')}"
    embedded = program.resources("TYPELIB")
    if given.type_library:
        content = given.type_library.read_bytes()
        yield embedded == [content], f"{len(embedded)} type libraries, none or another than {given.type_library}"
        yield kind_of_type_library(content) == SYSTEM_KINDS[given.kind], \
            f"the type library is for systems of kind {kind_of_type_library(content)}"
    else:
        yield not embedded, "a type library in a program"
    if given.largest:
        size = stripped_size(given)
        yield size <= given.largest, f"{size} bytes without debugging symbols, more than {given.largest}"


def stripped_size(given):
    with tempfile.TemporaryDirectory() as folder:
        stripped = pathlib.Path(folder) / given.file.name
        subprocess.run([given.strip, "-o", stripped, given.file], check=True)
        return stripped.stat().st_size


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("kind", choices=MACHINES)
    parser.add_argument("file", type=pathlib.Path)
    parser.add_argument("version")
    parser.add_argument("--exports", nargs="*", default=[])
    parser.add_argument("--type-library", type=pathlib.Path)
    parser.add_argument("--largest", type=int)
    parser.add_argument("--strip")
    given = parser.parse_args()
    wrong = [text for holds, text in findings(given, ProgramFile(given.file)) if not holds]
    if wrong:
        sys.exit("\n".join(f"{given.file}: {text}" for text in wrong))


if __name__ == "__main__":
    main()
