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
Forms/src/forms/json          analysis log text
Forms/src/forms/trace         forms/json analysis store text log zeb/profiling
Forms/src/forms/page          forms/json analysis
Forms/src/forms/tables        forms/json analysis text
Forms/src/forms/text          analysis console text
Forms/src/forms/markdown      forms/text analysis console
Command/src/command           console text log zeb/profiling
Command/src/command/runs      command forms/json analysis
Viewer/src/viewer             command console forms/json forms/trace forms/page forms/text analysis log logging text flatbuffers zeb/profiling
Compare/src/compare           command command/runs console forms/json forms/markdown forms/page forms/text analysis text zeb/profiling
Export/src/export             command command/runs console forms/tables analysis text zeb/profiling
History/src/history           command command/runs console forms/json forms/page forms/text analysis text zeb/profiling
SampleLog/src/samplelog       log flatbuffers
SampleLog/src/samplelog/command  samplelog command console log text zeb/profiling
Manual/src/manual             viewer compare export history samplelog/command console command reader/backend zeb/profiling
../../../examples/host        zeb/profiling
../../../examples/plugin      zeb/profiling
'

# Written by the build.
generated=Commit.h

{
    while read -r room uses; do
        own=${room#*/src/}
        for file in "$room"/*.{h,cpp}; do
            [ -f "$file" ] || continue
            sed -n 's|^#include "\(.*\)"$|\1|p' "$file" | while read -r header; do
                if [[ $header == */* ]]; then
                    [[ " $own $uses " == *" ${header%/*} "* ]] || echo "$file: may not include ${header%/*}/"
                else
                    [ "$header" = "$generated" ] || echo "$file: $header does not say its room"
                fi
            done
        done
    done < <(grep . <<<"$rooms")
    find ./*/src ./*/include -name '*.h' -printf '%P %p\n' | while read -r _ file; do
        folder=$(dirname "${file#./}")
        grep -q "^$folder\( \|$\)" <<<"$rooms" || [[ $folder == Benchmark/* ]] || echo "$folder: no room"
    done | sort -u
} | { ! grep .; }
