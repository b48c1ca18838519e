#!/usr/bin/env python3
"""Shows that the table of operations has every member function of the public classes: check_classes.py PAGE OBJECT...

That the classes have what is in the table, the compiler has seen. Here it is the other way round: OBJECT are the files
that the compiler has put the functions into; their names come from nm. One that PAGE, which is made of the table, does
not have is printed.
"""

import re
import subprocess
import sys

sys.dont_write_bytecode = True
import page  # noqa: E402


def functions(objects):
    """(class, name) of each member function, constructors and destructors left out."""
    command = ["nm", "--demangle", "--defined-only", *objects]
    text = subprocess.run(command, capture_output=True, text=True, check=True).stdout
    return {(owner, name) for owner, name in re.findall(r" tavi::(\w+)::(\w+)(?:\[abi:\w+\])?\(", text) if owner != name}


def main(page_name, *objects):
    listed = {}
    for row in page.rows(page_name):
        listed.setdefault(row.class_name, set()).add(("Set" if row.kind == "let" else "") + row.name)
    found = functions(objects)
    findings = [f"{owner}::{name} is not in the table of operations"
                for owner, name in sorted(found) if owner in listed and name not in listed[owner]]
    for owner, names in listed.items():
        if not any(owner == other for other, _ in found):
            findings.append(f"of {owner} no function is found, though the table has {len(names)}")
    print("\n".join(findings))
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
