#!/usr/bin/env bash
# Prints the includes that lead where their room may not look, that do not say their room, and the folders that no room is.
# One line a room: the folder, and those that its files may include besides their own. What a build has in angle brackets
# is free.
set -euo pipefail
cd "$(dirname "$0")/../Tools/Utilities/Profiler"

rooms='
Reader/include/zeb/profiling  zeb/profiling
Reader/src/logging
Reader/src/memory
Reader/src/text               memory
Reader/src/log                memory logging flatbuffers
Reader/src/store              log memory logging flatbuffers
Reader/src/reports            store log text logging zeb/profiling
Reader/src/reader             reports store text log logging zeb/profiling
Reader/src/commandline        zeb/profiling
Reader/src/reader/backend     reader reports store text log logging commandline zeb/profiling
Console/src/console           text
Analysis/src/analysis         reader/backend reports store text log memory zeb/profiling
Analysis/src/analysis/runs    analysis text
Forms/src/forms/json          analysis analysis/runs log text
Forms/src/forms/trace         forms/json analysis store text log zeb/profiling
Forms/src/forms/page          forms/json analysis analysis/runs
Forms/src/forms/tables        forms/json analysis text
Forms/src/forms/text          analysis analysis/runs console text
Forms/src/forms/markdown      forms/text analysis analysis/runs console text
Command/src/command           console text log zeb/profiling
Command/src/command/runs      command console forms/json analysis
Viewer/src/viewer             command command/runs console forms/json forms/trace forms/markdown forms/page forms/text analysis log logging text flatbuffers zeb/profiling
Compare/src/compare           command command/runs console forms/json forms/markdown forms/page forms/text analysis analysis/runs text zeb/profiling
Export/src/export             command command/runs console forms/tables analysis text zeb/profiling
History/src/history           command command/runs console forms/json forms/page forms/text analysis analysis/runs text zeb/profiling
SampleLog/src/samplelog       log flatbuffers
SampleLog/src/samplelog/command  samplelog command console log text zeb/profiling
Manual/src/manual             viewer compare export history samplelog/command console command reader/backend zeb/profiling
../../../examples/host        zeb/profiling
../../../examples/plugin      zeb/profiling
'

# Written by the build.
generated=Commit.h

shopt -s nullglob
files=()
while read -r room _; do
    files+=("$room"/*.{h,cpp})
done < <(grep . <<<"$rooms")

{
    awk -v generated="$generated" '
        function folder(path) { sub(/\/[^\/]*$/, "", path); return path }
        NR == FNR { room = $1; sub(/.*\/src\//, "", $1); allowed[room] = " " $0 " "; next }
        !/^#include ".*"$/ { next }
        { header = substr($0, 11, length($0) - 11) }
        header !~ /\// { if (header != generated) print FILENAME ": " header " does not say its room"; next }
        !index(allowed[folder(FILENAME)], " " folder(header) " ") { print FILENAME ": may not include " folder(header) "/" }
    ' <(grep . <<<"$rooms") "${files[@]}"
    find ./*/src ./*/include -name '*.h' -printf '%h\n' | sed 's|^\./||' | sort -u |
        awk 'NR == FNR { known[$1]; next } !($1 in known) && !/^Benchmark\// { print $1 ": no room" }' \
            <(grep . <<<"$rooms") -
} | { ! grep .; }
