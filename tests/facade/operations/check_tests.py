#!/usr/bin/env python3
"""Shows that the tests that prove the operations are run: check_tests.py PAGE PROGRAM...

PAGE is made of the table of operations; PROGRAM are the test programs, which say themselves which tests they have. A
test that is named in PAGE and not run (it is gone, disabled, or in no program) is printed. So is an operation that can
raise the database's errors and is not among those whose every call of the database is made to fail.
"""

import os
import pathlib
import re
import subprocess
import sys

sys.dont_write_bytecode = True
import page  # noqa: E402

FAULT_TEST = "ProviderFaultTest.EachCallMayFailOnce"


def tests_of(program):
    """(test, parameter) of each test of a program: SUITE.NAME and what it is run with, or nothing."""
    # Whoever chooses some cases for this run chooses none of these.
    environment = {name: value for name, value in os.environ.items() if name != "GTEST_FILTER"}
    command = [program, "--gtest_list_tests"]
    listed = subprocess.run(command, env=environment, capture_output=True, text=True, check=True).stdout
    suite = None
    for line in listed.splitlines():
        words = line.split("#")[0].split()
        if words and line.startswith("  "):
            name, _, parameter = words[0].partition("/")
            yield f"{suite}.{name}", parameter
        elif words and words[0].endswith("."):
            suite = next(part for part in reversed(words[0][:-1].split("/")) if not part.isdigit())


def main(page_name, *programs):
    tests = {test for program in programs for test in tests_of(program)}
    names = {name for name, _ in tests}
    text = pathlib.Path(page_name).read_text(encoding="utf-8")
    findings = [f"the test {name} is named in the page of operations and is not run"
                for name in sorted(set(re.findall(r"`([A-Z]\w*\.[A-Z]\w*)`", text)) - names)]
    tried = {parameter for name, parameter in tests if name == FAULT_TEST}
    for row in page.rows(page_name):
        kind = "" if row.kind == "method" else f"(_{row.kind})?"
        wanted = re.compile(rf"{row.name}{kind}(_\w+)?")
        if FAULT_TEST in row.tests and not any(wanted.fullmatch(parameter) for parameter in tried):
            findings.append(f"{row.name} ({row.kind}) is not tried by {FAULT_TEST}")
    print("\n".join(findings))
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
