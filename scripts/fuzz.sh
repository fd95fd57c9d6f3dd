#!/usr/bin/env bash
# Builds the libFuzzer targets (the `fuzz` preset: clang, ASan, UBSan) and runs each reader
# of outside data under the fuzzer: first on the inputs of faults it once had
# (fuzz/regressions/TARGET), then for SECONDS on its corpus (fuzz/corpus/TARGET, the files
# the program writes). A crash, a hang, a leak or a failed check stops the run with exit
# status 1 and leaves the input in build/fuzz/findings.
#
#   ./scripts/fuzz.sh [--seconds N] [--merge] [TARGET...]
#
# 25 seconds a target by default, as CI runs it; --merge adds what a run found that reaches
# new code to the corpus in the tree. Targets: journal settings runsheets simulated_mac
# update_feed cues window_list (all by default).
set -euo pipefail
cd "$(dirname "$0")/.."

all=(journal settings runsheets simulated_mac update_feed cues window_list)
seconds=25
merge=0
targets=()
while (($#)); do
    case "$1" in
        --seconds) seconds="$2"; shift 2 ;;
        --merge) merge=1; shift ;;
        -h|--help) sed -n '2,13p' "$0"; exit 0 ;;
        *) targets+=("$1"); shift ;;
    esac
done
((${#targets[@]})) || targets=("${all[@]}")

# clang with libFuzzer: Debian's clang and its runtime package, when not there yet.
probe='extern "C" int LLVMFuzzerTestOneInput(const unsigned char*, unsigned long) { return 0; }'
if ! echo "$probe" | clang++ -x c++ -fsanitize=fuzzer - -o /dev/null 2>/dev/null; then
    sudo=()
    [[ $(id -u) -ne 0 ]] && sudo=(sudo)
    export DEBIAN_FRONTEND=noninteractive
    "${sudo[@]}" apt-get update -qq
    "${sudo[@]}" apt-get install -y -qq --no-install-recommends clang libclang-rt-dev
fi

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz --target "${targets[@]/#/fuzz_}"

findings=build/fuzz/findings
mkdir -p "$findings"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
for target in "${targets[@]}"; do
    fuzzer="build/fuzz/fuzz/fuzz_$target"
    regressions=(fuzz/regressions/"$target"/*)
    if [[ -e "${regressions[0]}" ]]; then
        "$fuzzer" "${regressions[@]}" 2>"$work/$target.log" || {
            cat "$work/$target.log"; echo "fuzz_$target: a fault came back"; exit 1; }
    fi
    mkdir -p "$work/$target"
    # The fresh folder comes first: libFuzzer adds what it finds there, not to the tree.
    if ! "$fuzzer" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
            -dict=fuzz/json.dict -print_final_stats=1 -artifact_prefix="$findings/$target-" \
            "$work/$target" "fuzz/corpus/$target" >"$work/$target.log" 2>&1; then
        tail -n 60 "$work/$target.log"
        echo "fuzz_$target: a finding, kept in $findings"
        exit 1
    fi
    runs="$(grep -o 'number_of_executed_units: [0-9]*' "$work/$target.log" | grep -o '[0-9]*$')"
    coverage="$(grep -o 'cov: [0-9]*' "$work/$target.log" | tail -n 1 | grep -o '[0-9]*$')"
    echo "fuzz_$target: $runs inputs in $seconds s, coverage $coverage, no finding"
    if ((merge)); then
        "$fuzzer" -merge=1 "fuzz/corpus/$target" "$work/$target" >/dev/null 2>&1
    fi
done
