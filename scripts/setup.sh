#!/usr/bin/env bash
# Installs what Scrimlet needs to build and test on Debian or Ubuntu (or, on macOS, through
# Homebrew). Safe to run again: packages already there are left as they are.
set -euo pipefail

if [[ "$(uname)" == "Darwin" ]]; then
    brew install cmake ninja pkg-config nlohmann-json googletest google-benchmark libsodium
    exit 0
fi

packages=(cmake ninja-build g++ pkg-config nlohmann-json3-dev libgtest-dev libgmock-dev
          libbenchmark-dev libsodium-dev libicu-dev libcairo2-dev libpango1.0-dev)
missing=()
for package in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "ok installed" || missing+=("$package")
done
if ((${#missing[@]} == 0)); then
    exit 0
fi
sudo=()
if [[ $(id -u) -ne 0 ]]; then
    sudo=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo[@]}" apt-get update -qq
"${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
