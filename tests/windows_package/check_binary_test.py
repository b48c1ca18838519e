#!/usr/bin/env python3
"""Shows that check_binary.py refuses what it is there to refuse: check_binary_test.py KIND LIBRARY PROGRAM STRIP."""

import pathlib
import subprocess
import sys
import unittest

CHECK = pathlib.Path(__file__).resolve().parent / "check_binary.py"
ENTRIES = ["DllCanUnloadNow", "DllGetClassObject", "DllRegisterServer", "DllUnregisterServer"]
KIND, LIBRARY, PROGRAM, STRIP = sys.argv[1:]
OTHER_KIND = "x86" if KIND == "x64" else "x64"


def complaints(*arguments):
    done = subprocess.run([sys.executable, CHECK, *map(str, arguments)], capture_output=True, text=True, check=False)
    return done.stderr if done.returncode else ""


class CheckBinaryTest(unittest.TestCase):
    def test_the_other_kind_is_refused(self):
        self.assertIn("the machine is", complaints(OTHER_KIND, PROGRAM, "9.9.9"))

    def test_a_missing_and_a_further_entry_are_refused(self):
        self.assertIn("exports", complaints(KIND, LIBRARY, "9.9.9", "--exports", *ENTRIES[1:]))
        self.assertIn("exports", complaints(KIND, LIBRARY, "9.9.9", "--exports", "Another", *ENTRIES))

    def test_another_version_is_refused(self):
        self.assertIn("the version is", complaints(KIND, PROGRAM, "9.9.9"))

    def test_another_type_library_is_refused(self):
        self.assertIn("type libraries", complaints(KIND, LIBRARY, "9.9.9", "--exports", *ENTRIES, "--type-library", CHECK))

    def test_what_is_too_large_is_refused(self):
        self.assertIn("more than 1000", complaints(KIND, PROGRAM, "9.9.9", "--largest", "1000", "--strip", STRIP))

    def test_what_is_no_program_is_refused(self):
        self.assertNotEqual("", complaints(KIND, CHECK, "9.9.9"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
