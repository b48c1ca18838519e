#!/usr/bin/env bash
# Runs both sessions and compares what they print. Arguments: the command, and the interpreter with its script.
set -euo pipefail
tavi=$1
shift
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
"$@" "$tavi" "$folder/club" | diff "$(dirname "${BASH_SOURCE[0]}")/expected.txt" -
