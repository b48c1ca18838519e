#!/usr/bin/env bash
# check_page.sh MAKER SOURCES: docs/operations.md is what MAKER makes of the table of operations.
set -euo pipefail
maker=$1
sources=$2
made=$(mktemp)
trap 'rm -f "$made"' EXIT
cp "$sources/docs/operations.md" "$made"
"$maker" page "$sources/src/facade/operations/operations.txt" "$made"
if ! diff "$sources/docs/operations.md" "$made"; then
  echo "docs/operations.md is not what the table says. To make it anew: ninja -C build/release operations_page"
  exit 1
fi
