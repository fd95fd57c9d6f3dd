#!/usr/bin/env bash
# The long kill campaign: builds the release `scrimlet` and kills `scrimlet rehearse` with
# SIGKILL at random moments of a show, 500 times by default, checking after each relaunch
# that the simulated Mac is back as it was, the journal is gone and the run sheet tells it.
# Arguments go to the campaign: `./scripts/campaign.sh --trials 2000 --base /tmp` runs
# longer, on the disk instead of in memory. Exit status 1 names the first trial that was
# not healed, its folder and the seed that replays it.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --preset release >/dev/null
cmake --build --preset release --target scrimlet kill_campaign
exec build/release/tests/kill_campaign --scrimlet build/release/src/cli/scrimlet --trials 500 "$@"
