#!/usr/bin/env bash
# Measures which lines of the reader the fuzz inputs reach, and which the tests and the fuzz inputs reach together:
#
#   scripts/coverage.sh
#
# The fuzz inputs are the seeds, the findings and what scripts/fuzz.sh has left in build/fuzz-corpus. Lists the lines
# that nothing reaches.
set -euo pipefail
source "$(dirname "$0")/setup.sh"

packages+=(gcovr)
install_packages
build coverage

reader_dir=Tools/Utilities/Profiler/Reader
rooms='(log|store|reports|reader)'
bin=$PWD/build/coverage/bin

# report OPTION...: gcovr over the rooms that take a log in.
report() {
    gcovr --root . --object-directory build/coverage --filter "$reader_dir/src/$rooms/" --exclude-unreachable-branches \
        --exclude-throw-branches "$@" build/coverage/$reader_dir/CMakeFiles
}

forget() {
    find build/coverage -name '*.gcda' -delete
}

forget
"$bin/write-fuzz-seeds" build/fuzz-seeds
for target in log messages payloads options; do
    inputs=("build/fuzz-seeds/$target" "$reader_dir/fuzz/findings/$target")
    [ -d "build/fuzz-corpus/$target" ] && inputs+=("build/fuzz-corpus/$target")
    "$bin/replay-$target" "${inputs[@]}" 2>/dev/null | sed "s/^/Fuzz target $target: /"
done
report --print-summary 2>/dev/null | sed -n 's/^lines: /Lines by fuzzing alone: /p'
# Where a test limits the size of files, the counters can't be written either.
ctest --preset coverage -j "$(nproc)" --exclude-regex LeavesTheCsvFileAsItWasWhenItCannotBeWritten \
    --output-log build/coverage/tests.log >/dev/null || {
    tail -n 40 build/coverage/tests.log
    exit 1
}
report --sort-percentage
