#!/usr/bin/env bash
# check.sh BUILD_FOLDER: installs the library into a temporary folder, builds programs against it, runs them. One of them,
# and the commands before it, are what the README shows first; they run as they stand there, twice.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
build=$1
readme=$here/../../README.md
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

sed -n '/^```cpp$/,/^```$/p' "$readme" | sed '/^```/d' >"$work/first_look.cpp"
grep -q 'int main' "$work/first_look.cpp"
cmake --install "$build" --prefix "$work/prefix" >/dev/null
cmake -S "$here" -B "$work/build" -G Ninja -DCMAKE_PREFIX_PATH="$work/prefix" -DFIRST_LOOK="$work/first_look.cpp" >/dev/null
cmake --build "$work/build" >/dev/null
"$work/build/scoring_program" | grep -q "Failed to open membership database"

# As in a clone that has been built: ./run is the command.
mkdir "$work/clone"
ln -s "$(cd "$here/../../examples" && pwd)" "$work/clone/examples"
ln -s "$build/tavi" "$work/clone/run"
{
  echo 'set -e'
  sed -n '/^### The command$/,/^### The library$/s/^    //p' "$readme"
  echo '"$1" "$club"'
} >"$work/first_look.sh"
[[ $(grep -c '^\./run ' "$work/first_look.sh") -ge 8 ]]
for round in 1 2; do
  if ! (cd "$work/clone" && TMPDIR=$work bash "$work/first_look.sh" "$work/build/first_look") &>"$work/said" ||
    ! grep -q '^Evening [0-9]* is stored\.$' "$work/said"; then
    echo "Round $round of the README's first look ended otherwise:"
    tail -20 "$work/said"
    exit 1
  fi
done
