#!/usr/bin/env python3
"""Shows what check_tests.py and check_classes.py find, with a page, test programs and an nm that are made up."""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

HERE = pathlib.Path(__file__).resolve().parent
PAGE = """# Every operation

`ProseTest.Named` proves something.

## Club

| Operation | Kind | Arguments | Result | Errors | Proved by |
|---|---|---|---|---|---|
| `Find` | method | - | - | T, D | `FindTest.Finds`, `ProviderFaultTest.EachCallMayFailOnce` |
| `Name` | get | - | text | none | `NameTest.IsRead` |
| `Name` | let | `value` text in | - | none | `NameTest.IsRead` |
"""
TESTS = """Running main()
FindTest.
  Finds
NameTest.
  IsRead
ProseTest.
  Named
Operations/ProviderFaultTest.
  EachCallMayFailOnce/Find_fileOpen  # GetParam() = (Find, true)
"""
FUNCTIONS = """0000 T tavi::Club::Find(int)
0001 W tavi::Club::Name[abi:cxx11]() const
0002 W tavi::Club::SetName(std::string const&)
0003 T tavi::Club::Club()
0004 T tavi::Club::~Club()
0005 t tavi::Club::State::Hidden()
0006 T tavi::Other::Function()
"""


class Checks(unittest.TestCase):
    def setUp(self):
        os.environ.pop("GTEST_FILTER", None)
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def file(self, name, text):
        path = self.folder / name
        path.write_text(text, encoding="utf-8")
        path.chmod(0o755)
        return path

    def check(self, script, page, program, text):
        """(exit code, findings) of a check whose program prints a text."""
        printing = self.file(program, f"#!/bin/sh\n[ $GTEST_FILTER ] || cat <<'END'\n{text}END\n")
        environment = dict(os.environ, PATH=f"{self.folder}:{os.environ['PATH']}")
        done = subprocess.run([sys.executable, HERE / script, self.file("page.md", page), printing],
                              env=environment, capture_output=True, text=True, check=False)
        self.assertEqual(done.stderr, "")
        return done.returncode, done.stdout.strip()

    def check_tests(self, page=PAGE, text=TESTS):
        return self.check("check_tests.py", page, "program", text)

    def check_classes(self, page=PAGE, text=FUNCTIONS):
        return self.check("check_classes.py", page, "nm", text)

    def test_what_agrees_is_accepted(self):
        self.assertEqual(self.check_tests(), (0, ""))
        self.assertEqual(self.check_classes(), (0, ""))

    def test_all_tests_are_seen_whichever_are_chosen_to_run(self):
        os.environ["GTEST_FILTER"] = "OtherTest.*"
        self.addCleanup(os.environ.pop, "GTEST_FILTER")
        self.assertEqual(self.check_tests(), (0, ""))

    def test_tests_that_are_gone_or_disabled_are_found(self):
        missing = "the test {} is named in the page of operations and is not run"
        self.assertEqual(self.check_tests(text=TESTS.replace("  Finds\n", "")), (1, missing.format("FindTest.Finds")))
        self.assertEqual(self.check_tests(text=TESTS.replace("  Finds", "  DISABLED_Finds")), (1, missing.format("FindTest.Finds")))
        self.assertEqual(self.check_tests(text=TESTS.replace("ProseTest.", "PoetryTest.")), (1, missing.format("ProseTest.Named")))

    def test_an_operation_whose_database_errors_nobody_tries_is_found(self):
        others = TESTS.replace("/Find_fileOpen", "/FindAll_fileOpen")
        self.assertEqual(self.check_tests(text=others), (1, "Find (method) is not tried by ProviderFaultTest.EachCallMayFailOnce"))

    def test_functions_that_the_table_does_not_have_are_found(self):
        for line, name in (("0007 T tavi::Club::Forget()\n", "Forget"), ("0007 W tavi::Club::Other[abi:cxx11]()\n", "Other")):
            self.assertEqual(self.check_classes(text=FUNCTIONS + line), (1, f"Club::{name} is not in the table of operations"))

    def test_a_class_without_functions_is_found(self):
        self.assertEqual(self.check_classes(text="0006 T tavi::Other::Function()\n"),
                         (1, "of Club no function is found, though the table has 3"))


if __name__ == "__main__":
    unittest.main()
