#!/usr/bin/env bash
# Fuzzes the reader, the command line and what a comparison reads back:
#
#   scripts/fuzz.sh [TARGET] [SECONDS]
#
# TARGET is log, messages, payloads, options, run or all (default); each runs for SECONDS (default 60) on one core. What a
# run has learnt stays in build/fuzz-corpus. A finding goes to build/fuzz-findings; named after its fault and put into
# Fuzz/findings/TARGET it becomes a test. Ends with 1 when there are findings.
set -euo pipefail
source "$(dirname "$0")/setup.sh"

all_targets=(log messages payloads options run)
target=${1:-all}
seconds=${2:-60}
source_dir=$PWD/Tools/Utilities/Profiler/Fuzz
bin=$PWD/build/fuzz/bin

case " all ${all_targets[*]} " in
    *" $target "*) ;;
    *)
        echo "$target: no target, there are ${all_targets[*]} and all" >&2
        exit 2
        ;;
esac
[ "$target" = all ] && targets=("${all_targets[@]}") || targets=("$target")

# number PATTERN LOG: the last number that the pattern, with one group, finds in a log of libFuzzer.
number() {
    sed -n "s/.*$1.*/\1/p" "$2" | tail -n 1
}

row() {
    printf '%-10s %12s %10s %10s %10s' "$@"
}

packages+=(clang libclang-rt-dev)
install_packages
build fuzz "${targets[@]/#/fuzz-}" write-fuzz-seeds
"$bin/write-fuzz-seeds" build/fuzz-seeds

limits=(-max_total_time="$seconds" -timeout=20 -rss_limit_mb=2048 -max_len=8192)
# What serves speed. To weigh inputs by how rare they are (entropic) takes longer than to try them, with this many
# features; the values that are compared lead on where there are texts and offsets to hit, and cost half the speed where
# there are not; and a small quarantine stays in the caches.
export ASAN_OPTIONS=quarantine_size_mb=8:malloc_context_size=4
with_value_profile=" log messages "
summary=$(row TARGET EXECUTIONS EDGES FEATURES FINDINGS)
any_findings=0
for name in "${targets[@]}"; do
    corpus=build/fuzz-corpus/$name
    findings=build/fuzz-findings/$name
    log=build/fuzz-$name.log
    mkdir -p "$corpus" "$findings"
    echo "$name: $seconds s, see $log" >&2
    [[ $with_value_profile = *" $name "* ]] && value_profile=1 || value_profile=0
    before=$(find "$findings" -type f | wc -l)
    "$bin/fuzz-$name" "${limits[@]}" -entropic=0 -use_value_profile="$value_profile" -print_final_stats=1 \
        -dict="$source_dir/fuzz.dict" -artifact_prefix="$findings/" \
        "$corpus" "build/fuzz-seeds/$name" "$source_dir/findings/$name" \
        >"$log" 2>&1 || any_findings=1
    found=$(($(find "$findings" -type f | wc -l) - before))
    summary+=$'\n'$(row "$name" "$(number 'executed_units: *\([0-9]*\)' "$log")" \
        "$(number ' cov: \([0-9]*\)' "$log")" "$(number ' ft: \([0-9]*\)' "$log")" "$found")
done
echo "$summary"
exit "$any_findings"
