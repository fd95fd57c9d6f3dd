#!/usr/bin/env bash
# Builds Scrimlet and plays its engine's stories on the simulated Mac.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --preset release >/dev/null
cmake --build --preset release
ctest --preset release -R 'Director|JournalCrash' --verbose | grep -E '^\[|tests passed'
