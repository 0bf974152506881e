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

reader_dir=Tools/Utilities/Profiler/Reader
findings_dir=Tools/Utilities/Profiler/Fuzz/findings
rooms=(log store reports reader)
bin=$PWD/build/coverage/bin

# collect TRACE: puts what the counters say into a file.
collect() {
    gcovr --root . --object-directory build/coverage --filter "$reader_dir/src/" --exclude-throw-branches \
        --json "$1" "build/coverage/$reader_dir/CMakeFiles" 2>/dev/null
}

# summary TITLE TRACE: the lines reached, room by room.
summary() {
    local room
    echo "$1:"
    for room in "${rooms[@]}"; do
        printf '    %-10s' "$room/"
        gcovr --root . --add-tracefile "$2" --filter "$reader_dir/src/$room/" --print-summary 2>/dev/null |
            sed -n 's/^lines: //p'
    done
}

# Counters of earlier runs, and of the programs that a build asks for their tests.
forget() {
    find build -path 'build/coverage/*.gcda' -delete
}

forget
build coverage
forget
"$bin/write-fuzz-seeds" build/fuzz-seeds
for target in log messages payloads options run; do
    inputs=("build/fuzz-seeds/$target" "$findings_dir/$target")
    [ -d "build/fuzz-corpus/$target" ] && inputs+=("build/fuzz-corpus/$target")
    "$bin/replay-$target" "${inputs[@]}" 2>/dev/null | sed "s/^/Fuzz target $target: /"
done
collect build/coverage/fuzz.json
# Where a test limits the size of files, the counters can't be written either.
ctest --preset coverage -j "$(nproc)" --exclude-regex AppendsToTheCsvFileOrLeavesItAsItWas \
    --output-log build/coverage/tests.log >/dev/null || {
    tail -n 40 build/coverage/tests.log
    exit 1
}
collect build/coverage/all.json
summary "Lines reached by fuzzing alone" build/coverage/fuzz.json
summary "Lines reached by tests and fuzzing" build/coverage/all.json
echo "Lines that nothing reaches:"
gcovr --root . --add-tracefile build/coverage/all.json --filter "$reader_dir/src/($(IFS='|' && echo "${rooms[*]}"))/" 2>/dev/null |
    awk '/^Tools/ { file = $1; $1 = "" } $NF ~ /^[0-9,-]+$/ && $(NF - 1) ~ /%$/ { print "    " file ": " $NF }'
