#!/usr/bin/env python3
"""Shows that scripts/check-operations accepts this checkout and refuses copies of it that were tampered with."""

import importlib.machinery
import importlib.util
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
PAGE = "docs/operations.md"
HEADER = "src/facade/MembershipDatabase.h"
WALK_TEST = "tests/members/WalkTest.cpp"

sys.dont_write_bytecode = True
LOADER = importlib.machinery.SourceFileLoader("check_operations", str(ROOT / "scripts/check-operations"))
CHECK = importlib.util.module_from_spec(importlib.util.spec_from_loader("check_operations", LOADER))
LOADER.exec_module(CHECK)


def what_is_not_looked_at(folder, names):
    def is_looked_at(name):
        return name.endswith((".h", ".cpp", ".md")) or name == "CMakeLists.txt" or (pathlib.Path(folder) / name).is_dir()
    return [name for name in names if not is_looked_at(name)]


class CheckOperations(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.root = pathlib.Path(cls.folder.name)
        for top in ("docs", "src", "tests"):
            shutil.copytree(ROOT / top, cls.root / top, ignore=what_is_not_looked_at)

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def setUp(self):
        self.doctored = {}

    def tearDown(self):
        self.heal()

    def doctor(self, file, old, new):
        path = self.root / file
        text = path.read_text(encoding="utf-8")
        self.assertIn(old, text)
        self.doctored.setdefault(path, text)
        path.write_text(text.replace(old, new, 1), encoding="utf-8")

    def heal(self):
        for path, text in self.doctored.items():
            path.write_text(text, encoding="utf-8")
        self.doctored = {}

    def row_of(self, name, kind="method"):
        lines = (self.root / PAGE).read_text(encoding="utf-8").splitlines(keepends=True)
        return next(line for line in lines if line.startswith(f"| `{name}` | {kind} |"))

    def findings(self):
        return "\n".join(CHECK.check(self.root))

    def test_accepts_the_page_as_it_is(self):
        self.assertEqual(self.findings(), "")

    def test_prints_findings_and_fails_as_a_program(self):
        def run():
            return subprocess.run([sys.executable, ROOT / "scripts/check-operations", self.root], capture_output=True,
                                  text=True, check=False)
        done = run()
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""))
        self.doctor(PAGE, self.row_of("DeletePair"), "")
        done = run()
        self.assertEqual((done.returncode, done.stderr), (1, ""))
        self.assertIn("DeletePair", done.stdout)

    def test_refuses_an_operation_without_a_row(self):
        self.doctor(PAGE, self.row_of("DeletePair"), "")
        self.assertIn("MembershipDatabase.DeletePair (method or get) has 0 rows", self.findings())

    def test_refuses_an_operation_with_two_rows(self):
        self.doctor(PAGE, self.row_of("DeletePair"), self.row_of("DeletePair") * 2)
        self.assertIn("MembershipDatabase.DeletePair (method or get) has 2 rows", self.findings())

    def test_refuses_a_row_of_an_operation_that_is_gone(self):
        self.doctor(HEADER, "void RecalculateAllHandicaps();", "")
        self.assertIn("`RecalculateAllHandicaps` (method) is not declared", self.findings())

    def test_refuses_a_new_operation_that_the_page_does_not_know(self):
        self.doctor(HEADER, "void RecalculateAllHandicaps();", "void RecalculateAllHandicaps();\n  void Forget();")
        self.assertIn("MembershipDatabase.Forget (method or get) has 0 rows", self.findings())

    def test_refuses_a_missing_half_of_a_property(self):
        self.doctor(PAGE, self.row_of("ClubName", "let"), "")
        self.assertIn("MembershipDatabase.ClubName (let) has 0 rows", self.findings())

    def test_refuses_another_name_type_direction_or_default_of_an_argument(self):
        for old, new in (("`MemberNo` 32-bit in", "`Number` 32-bit in"), ("`NameFormat` 16-bit", "`NameFormat` 32-bit"),
                         ("`EBUNumber` text out", "`EBUNumber` text in"), ("optional (empty)", "optional (none)"),
                         ("; `DefaultName` text in optional (empty)", "")):
            with self.subTest(new):
                good = self.row_of("GetNameAndEBUNumber")
                self.doctor(PAGE, good, good.replace(old, new))
                self.assertIn("`GetNameAndEBUNumber`: the arguments are", self.findings())
                self.heal()

    def test_refuses_another_result_or_kind(self):
        row = self.row_of("IsValidMemberID")
        self.doctor(PAGE, row, row.replace("| boolean |", "| 32-bit |").replace("| method |", "| let |"))
        findings = self.findings()
        self.assertIn("`IsValidMemberID`: the result is 32-bit, the header says boolean", findings)
        self.assertIn("`IsValidMemberID`: the kind is let", findings)

    def test_refuses_an_error_number_that_nobody_raises(self):
        row = self.row_of("AllEmailAddresses", "get")
        self.doctor(PAGE, row, row.replace("0x800A01C9", "0x800A01CA"))
        self.assertIn("0x800A01CA is no error number", self.findings())

    def test_refuses_an_operation_whose_database_errors_nobody_tries(self):
        self.doctor("tests/facade/faults/support/Operations.cpp", '"DeletePair"', '"DeleteOther"')
        self.assertIn("has no such operation", self.findings())
        row = self.row_of("DeletePair")
        self.doctor(PAGE, row, row.replace(", `ProviderFaultTest.EachCallMayFailOnce`", ""))
        self.assertIn("`DeletePair`: passes on errors of the database", self.findings())

    def test_refuses_a_row_without_a_test(self):
        row = self.row_of("DeleteMember")
        self.doctor(PAGE, row, row[:row.rindex("| `")] + "| |\n")
        self.assertIn("`DeleteMember`: names no test", self.findings())

    def test_refuses_tests_that_are_gone_disabled_commented_out_or_not_built(self):
        declaration = "TEST_F(WalkTest, GivesTheActiveMembersAndEndsOnce) {"
        name = "the test WalkTest.GivesTheActiveMembersAndEndsOnce"
        for file, old, new, finding in (
                (WALK_TEST, "EndsOnce) {", "EndsTwice) {", "does not exist"),
                (WALK_TEST, declaration, declaration.replace(", ", ", DISABLED_"), "is disabled or not built"),
                (WALK_TEST, declaration, "// " + declaration, "does not exist"),
                ("tests/members/CMakeLists.txt", "WalkTest.cpp", "", "is disabled or not built")):
            with self.subTest(new or "not built"):
                self.doctor(file, old, new)
                self.assertIn(f"{name} {finding}", self.findings())
                self.heal()


if __name__ == "__main__":
    unittest.main()
