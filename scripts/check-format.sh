#!/usr/bin/env bash
# Checks that every C++ file of the project is formatted as .clang-format
# says (test data excluded); with --fix, formats them in place.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
mapfile -t files < <(git ls-files '*.cc' '*.h' | grep -v '^testing/data/')
if [ "${1:-}" = "--fix" ]; then
  clang-format -i "${files[@]}"
  exit 0
fi
if ! clang-format --dry-run --Werror "${files[@]}" 2>/tmp/vantu-format.$$; then
  grep -E '^[^ ].*: (error|warning):' /tmp/vantu-format.$$ | cut -d: -f1 | sort -u | sed 's/^/not formatted: /' >&2
  rm -f /tmp/vantu-format.$$
  echo "Run scripts/check-format.sh --fix to format them." >&2
  exit 1
fi
rm -f /tmp/vantu-format.$$
echo "All ${#files[@]} C++ files are formatted."
