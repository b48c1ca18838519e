#!/usr/bin/env bash
# make_name_table_test.sh PROGRAM: the maker of name tables says what is wrong with a text of families, and in which line,
# and takes a sound one.
set -uo pipefail
maker=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
findings=0

# make TEXT: the maker's message for a text, without the folder.
make() {
  printf '%b' "$1" >"$folder/names.txt"
  rm -f "$folder/table.cpp"
  (cd "$folder" && "$maker" SurnameTable names.txt table.cpp 2>&1)
}

# refused TEXT MESSAGE
refused() {
  local message
  message=$(make "$1") && message="it was taken"
  [[ $message == "names.txt:$2" && ! -e $folder/table.cpp ]] && return
  printf 'text:     %s\nexpected: names.txt:%s\nactual:   %s\n' "$1" "$2" "$message"
  findings=1
}

refused '# no names\n' ' holds no families'
refused 'Smith Smyth\nWood Smyth\n' '2: Smyth stands in line 1 already'
refused 'Brien Bryan B-Ryan\n' '1: B-Ryan stands in line 1 already'
refused 'McRae\nMacRae\n' '2: MacRae stands in line 1 already'
refused 'Wood\nSmith\n' '2: SMITH stands after WOOD: the lines are sorted'
refused 'Smith 1 Smyth\n' "1: Smyth stands after the family's place"
refused 'Smith -\n' '1: - has no letters'
refused '\n12\n' '2: a place without a name'

message=$(make '# two families\n\nSmith Smyth # and more\nWood 1\n')
if [[ -n $message || ! -s $folder/table.cpp ]]; then
  printf 'a sound text is refused: %s\n' "$message"
  findings=1
elif ! grep -q '"WOODSMITHSMYTH"' "$folder/table.cpp"; then
  printf 'the common family does not come first:\n%s\n' "$(cat "$folder/table.cpp")"
  findings=1
fi
exit $findings
