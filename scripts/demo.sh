#!/usr/bin/env bash
# Builds Scrimlet and plays a day on the simulated Mac with the `scrimlet` command: a share
# that raises the curtain, a change made by hand, a time limit, a switch that outlives a
# show, a crash healed at the next launch, and the run sheets at the end. Arguments go to
# `scrimlet demo`: `./scripts/demo.sh --pace 2` plays it in real time.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --preset release >/dev/null
cmake --build --preset release --target scrimlet
build/release/src/cli/scrimlet demo "$@"
