#!/usr/bin/env python3
"""Checks what a Windows program exports and imports.

    check_binary.py OBJDUMP FILE [EXPORT...]

FILE must export exactly the names given, and import from libraries only that belong to the system.
"""

import re
import subprocess
import sys

SYSTEM = {"advapi32.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll", "oleaut32.dll", "shell32.dll", "user32.dll"}


def main():
    objdump, file, *wanted = sys.argv[1:]
    text = subprocess.run([objdump, "-p", file], check=True, capture_output=True, text=True).stdout
    table = text.partition("[Ordinal/Name Pointer] Table")[2].partition("\n\n")[0]
    exports = set(re.findall(r"^\s*\[\s*\d+\]\s+(?:\+base\[\s*\d+\]\s+\w+\s+)?(\S+)$", table, re.MULTILINE))
    imports = {name.lower() for name in re.findall(r"DLL Name: (\S+)", text)}
    if exports != set(wanted):
        sys.exit(f"{file} exports {sorted(exports)}, not {sorted(wanted)}")
    if not imports <= SYSTEM:
        sys.exit(f"{file} needs {sorted(imports - SYSTEM)}")
    if not imports:
        sys.exit(f"the imports of {file} could not be read")


if __name__ == "__main__":
    main()
