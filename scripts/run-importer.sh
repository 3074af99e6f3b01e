#!/usr/bin/env bash
# Installs what is missing, builds, and runs the importer. Without arguments
# it builds a sample user profile and imports it (vantu-import --demo);
# otherwise the arguments go to vantu-import, e.g. --profile DIR.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"
build=${VANTU_BUILD_DIR:-$root/build}
if [ $# -eq 0 ]; then
  exec "$build/vantu-import" --demo
fi
exec "$build/vantu-import" "$@"
