#!/usr/bin/env python3
"""Holds what the example in C# declares against the interface description: example_test.py [COMPILER].

With a compiler, the example is compiled too.
"""

import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
EXAMPLE = ROOT / "examples" / "windows" / "Members.cs"
DESCRIPTION = (ROOT / "src" / "automation" / "TaviMembership.idl").read_text(encoding="utf-8")
ENTRIES = (ROOT / "tests" / "automation" / "type-library.txt").read_text(encoding="utf-8")
COMPILER = sys.argv[1] if len(sys.argv) > 1 else ""


def described(attribute, name):
    """The attribute of each thing in the description that has the name, in upper case."""
    pattern = r"\[([^\[\]]*)\]\s*(?:coclass|interface|HRESULT) " + name + r"\b"
    return {re.search(attribute + r"\(([^)]*)\)", found)[1].upper()
            for found in re.findall(pattern, DESCRIPTION) if attribute + "(" in found}


class ExampleTest(unittest.TestCase):
    def test_members_have_the_numbers_of_the_type_library(self):
        declared = re.findall(r"\[DispId\((\d+)\)\]\s*\w+ (\w+)", EXAMPLE.read_text(encoding="utf-8"))
        self.assertEqual(6, len(declared))
        members = re.search(r"^type\t_MembershipDatabase\t.*\n((?:member\t.*\n)+)", ENTRIES, re.MULTILINE)[1]
        for number, name in declared:
            self.assertIn(f"member\t{name}\t{number}\t", members)

    def test_class_and_interface_have_the_identifiers_of_the_type_library(self):
        declared = re.findall(r'Guid\("([^"]*)"\).*\n(?:class|interface) I?(\w+)', EXAMPLE.read_text(encoding="utf-8"))
        self.assertEqual(2, len(declared))
        self.assertEqual({declared[0][0]}, described("uuid", "_" + declared[0][1]))
        self.assertEqual({declared[1][0]}, described("uuid", declared[1][1]))

    @unittest.skipUnless(COMPILER, "no compiler for C#")
    def test_it_compiles_without_warnings(self):
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run([COMPILER, "-warnaserror", f"-out:{folder}/Members.exe", EXAMPLE], check=True)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
