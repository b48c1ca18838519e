#!/usr/bin/env bash
# Shows what tests/scripts/run-cases makes of programs that pass, fail, skip and die: each has its output and its result.
set -uo pipefail
run_cases=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)/run-cases
unset TAVI_CASE TAVI_FIXED_ADDRESSES
TAVI_TEST_NOTES=$(mktemp -d)
export TAVI_TEST_NOTES
trap 'rm -rf "$TAVI_TEST_NOTES"' EXIT
findings=0

# expect WHAT EXPECTED ACTUAL
expect() {
  [[ $2 == "$3" ]] && return
  printf '%s:\nexpected: %s\nactual:   %s\n' "$1" "$2" "$3"
  findings=1
}

passing='echo "[==========] Running 3 tests."
echo "[ RUN      ] Walk.Ends"; echo "some talk"; echo "[       OK ] Walk.Ends (0 ms)"
echo "[ RUN      ] Walk.NeedsFiles"; echo "WalkTest.cpp:3: Skipped"; echo "there are no files"; echo
echo "[  SKIPPED ] Walk.NeedsFiles (0 ms)"
echo "[ RUN      ] Walk.Goes"; printf "no end of line[       OK ] Walk.Goes (0 ms)\n"'
failing='echo "[ RUN      ] Walk.Ends"; echo "[       OK ] Walk.Ends (0 ms)"
echo "[ RUN      ] Walk.Goes"; echo "it does not"; echo "[  FAILED  ] Walk.Goes (0 ms)"; exit 1'
dying='echo "[ RUN      ] Walk.Ends"; echo "so far"; kill -SEGV $$'

output=$("$run_cases" passing bash -c "$passing")
expect "A passing program is silent" "" "$output"
expect "What was not run has its reason, the others their number" "not run: there are no files
run: 2" "$(cat "$TAVI_TEST_NOTES/passing")"

output=$("$run_cases" windows bash -c "{ $passing; } | sed 's/\$/\r/'")
expect "A Windows program's lines are understood" "not run: there are no files
run: 2" "$(cat "$TAVI_TEST_NOTES/windows")"

output=$("$run_cases" wordless bash -c 'echo "[ RUN      ] Walk.Ends"; echo "[  SKIPPED ] Walk.Ends (0 ms)"')
expect "A case that gives no reason is named" "not run: Walk.Ends does not say why
run: 0" "$(cat "$TAVI_TEST_NOTES/wordless")"

output=$("$run_cases" failing bash -c "$failing")
expect "The result is that of the program" 1 $?
expect "Only the failed case shows" "[ RUN      ] Walk.Goes
it does not
[  FAILED  ] Walk.Goes (0 ms)" "$output"

output=$("$run_cases" dying bash -c "$dying")
expect "A program that dies has failed" yes "$( (($? > 128)) && echo yes)"
expect "The case in which it died shows" "[ RUN      ] Walk.Ends
so far
The program ended in this case." "$output"

output=$("$run_cases" --needs no_such_program needing bash -c "exit 1")
expect "Without a program that it needs it is not run" "0not run: no_such_program is not installed" \
  "$?$(cat "$TAVI_TEST_NOTES/needing")"

# shellcheck disable=SC2016
output=$(TAVI_CASE='Walk.*' "$run_cases" chosen bash -c 'echo "[ RUN      ] $GTEST_FILTER"; echo "[       OK ] Walk.Ends (0 ms)"')
expect "Chosen cases are asked for and shown" "[       OK ] Walk.Ends (0 ms)" "$output"
# shellcheck disable=SC2016
output=$(TAVI_CASE='Walk.*' "$run_cases" chosen bash --gtest_filter=Other.* -c 'exit 1')
expect "A part of a program leaves chosen cases to the rest of it" 0 $?
exit "$findings"
