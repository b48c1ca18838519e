#!/usr/bin/env python3
"""Shows what set_double_defaults.py changes in a type library, and what it refuses: set_double_defaults_test.py FOLDER.

FOLDER holds the component's library as the compiler wrote it, WithTextDefaults.tlb, and as it was made of that,
TaviMembership.tlb.
"""

import pathlib
import struct
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
TOOL = ROOT / "src" / "automation" / "set_double_defaults.py"
FOLDER = pathlib.Path(sys.argv.pop())
TEXT = b"\x08\x00\x04\x00\x00\x00-1.0WW"
DOUBLE = b"\x05\x00" + struct.pack("<d", -1.0) + b"WW"
TEXT_TYPE, DOUBLE_TYPE = b"\x08\x00\x08\x80", b"\x05\x00\x05\x80"


class SetDoubleDefaultsTest(unittest.TestCase):
    def setUp(self):
        self.compiled = (FOLDER / "WithTextDefaults.tlb").read_bytes()
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.before = pathlib.Path(folder.name) / "before.tlb"
        self.after = pathlib.Path(folder.name) / "after.tlb"

    def run_tool(self, library, default="-1.0", count="2"):
        self.before.write_bytes(library)
        self.after.write_bytes(b"of an earlier build")
        return subprocess.run([sys.executable, TOOL, self.before, self.after, default, count],
                              capture_output=True, text=True, check=False)

    def refusal(self, library, default="-1.0", count="2"):
        """What the tool says when it refuses; it leaves no result then, not even an older one."""
        done = self.run_tool(library, default, count)
        self.assertEqual(done.returncode, 1, done.stderr)
        self.assertFalse(self.after.exists())
        self.assertNotIn("Traceback", done.stderr)
        return done.stderr

    def test_two_defaults_and_two_types_are_changed_and_nothing_else(self):
        self.assertEqual(self.run_tool(self.compiled).returncode, 0)
        changed = self.after.read_bytes()
        self.assertEqual(len(changed), len(self.compiled))
        self.assertEqual((self.compiled.count(TEXT), self.compiled.count(DOUBLE)), (2, 0))
        self.assertEqual((changed.count(TEXT), changed.count(DOUBLE)), (0, 2))
        masked = self.compiled.replace(TEXT, DOUBLE)
        places = [place for place in range(0, len(masked), 4) if masked[place:place + 4] != changed[place:place + 4]]
        self.assertEqual(len(places), 2)
        for place in places:
            self.assertEqual((masked[place:place + 4], changed[place:place + 4]), (TEXT_TYPE, DOUBLE_TYPE))

    def test_the_library_of_the_build_is_the_changed_one(self):
        self.run_tool(self.compiled)
        self.assertEqual(self.after.read_bytes(), (FOLDER / "TaviMembership.tlb").read_bytes())

    def test_a_library_that_was_changed_already_is_refused(self):
        self.run_tool(self.compiled)
        self.assertIn("0 texts have the default", self.refusal(self.after.read_bytes()))

    def test_another_number_of_defaults_is_refused(self):
        self.assertIn("2 texts have the default", self.refusal(self.compiled, count="1"))
        self.assertIn("2 texts have the default", self.refusal(self.compiled, count="3"))

    def test_another_default_is_refused(self):
        self.assertIn("0 texts have the default", self.refusal(self.compiled, default="-2.0"))
        self.assertIn("has not four characters", self.refusal(self.compiled, default="-10.0"))
        self.assertIn("could not convert", self.refusal(self.compiled.replace(b"-1.0", b"word"), default="word"))

    def test_an_argument_of_another_type_is_refused(self):
        self.run_tool(self.compiled)
        changed = self.after.read_bytes()
        # The first of the two types alone, as if the description gave one of the arguments another type.
        place = next(place for place in range(0, len(changed), 4)
                     if self.compiled[place:place + 4] == TEXT_TYPE and changed[place:place + 4] == DOUBLE_TYPE)
        one = self.compiled[:place] + DOUBLE_TYPE + self.compiled[place + 4:]
        self.assertIn("1 texts have the default", self.refusal(one))
        self.assertIn("stands in it 2 times, not 1", self.refusal(one, count="1"))

    def test_the_same_bytes_elsewhere_are_refused(self):
        self.assertIn("stands in it 3 times", self.refusal(self.compiled + TEXT))

    def test_what_is_no_library_or_ends_early_is_refused(self):
        self.assertIn("does not begin with MSFT", self.refusal(b"MZ" + self.compiled))
        self.assertIn("does not begin with MSFT", self.refusal(b""))
        for length in range(4, len(self.compiled) - 1, 997):
            self.refusal(self.compiled[:length])

    def test_a_library_that_is_not_there_is_refused(self):
        done = subprocess.run([sys.executable, TOOL, self.before, self.after, "-1.0", "2"],
                              capture_output=True, text=True, check=False)
        self.assertEqual(done.returncode, 1)
        self.assertIn("before.tlb", done.stderr)


if __name__ == "__main__":
    unittest.main()
