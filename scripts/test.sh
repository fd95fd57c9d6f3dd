#!/usr/bin/env bash
# Builds with warnings as errors and runs the whole test suite. The preset (debug, release
# or asan) is the first argument; debug by default.
set -euo pipefail
cd "$(dirname "$0")/.."
preset="${1:-debug}"
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset"
ctest --preset "$preset"
