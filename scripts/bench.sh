#!/usr/bin/env bash
# Measures the release build of the reader on logs of many shapes and prints one table:
#
#   scripts/bench.sh [--quick | --full] [--rounds N] [SHAPE...]     whole logs against their floors
#   scripts/bench.sh --forms [--quick | --full] [SHAPE...]          the forms of a run, from the log on
#   scripts/bench.sh --comparison [SEEDS [FIRST]]                   the comparison on logs of which the truth is known
#   scripts/bench.sh --parts [options of Google Benchmark]          the steps of loading, one by one
#
# --quick takes small logs and 3 rounds, --full large ones, with a single chunk of 400 MB. docs/performance.md says
# what the columns mean.
set -euo pipefail
source "$(dirname "$0")/setup.sh"

packages+=(libbenchmark-dev python3 python3-flatbuffers)
install_packages
cmake --preset release -DZEB_BUILD_BENCHMARKS=ON >&2
bin=build/release/bin

if [ "${1-}" = --parts ]; then
    shift
    build release reader-parts-bench
    exec "$bin/reader-parts-bench" "$@"
fi

if [ "${1-}" = --comparison ]; then
    shift
    build release comparison-tables
    exec "$bin/comparison-tables" "$@"
fi

build release profile-log-bench
directory=$(mktemp -d build/bench.XXXXXX)
trap 'rm -rf "$directory"' EXIT
schema=Tools/Utilities/Profiler/Reader/src/log/ProfileLog.fbs
flatc --python --no-warnings -o "$directory" "$schema"
export PYTHONPATH=$directory
case " $* " in
    *" --quick "*) rounds=(--rounds 3) ;;
    *) rounds=() ;;
esac
"$bin/profile-log-bench" "${rounds[@]}" "$@" --directory "$directory/logs" \
    --flatc "$(command -v flatc)" --schema "$schema" \
    --python /usr/bin/python3 Tools/Utilities/Profiler/Benchmark/src/benchmark/walk_log.py
