#!/usr/bin/env bash
# Prints the includes that lead where their room may not look, and the folders that no room is. One line a room: the
# folder, and those that its files may include besides their own. What a build has in angle brackets is free.
set -euo pipefail
cd "$(dirname "$0")/../Tools/Utilities/Profiler"

rooms='
Reader/include/zeb/profiling  zeb/profiling
Reader/src/logging
Reader/src/memory
Reader/src/text               memory
Reader/src/log                memory logging flatbuffers
Reader/src/store              log memory logging flatbuffers
Reader/src/reports            store text logging zeb/profiling
Reader/src/reader             reports store text log logging zeb/profiling
Reader/src/commandline        zeb/profiling
Reader/src/reader/backend     reader reports store text log logging commandline zeb/profiling
Command/src                   text log
Viewer/src                    log logging text flatbuffers zeb/profiling
Analysis/src                  reader/backend reports store text log memory zeb/profiling
Forms/src                     text log store zeb/profiling
Compare/src                   text zeb/profiling
SampleLog/src                 log flatbuffers
SampleLog/src/command         log text zeb/profiling
Manual/src                    text command reader/backend zeb/profiling
../../../examples/host        zeb/profiling
../../../examples/plugin      zeb/profiling
'

{
    while read -r room uses; do
        own=${room#*/src/}
        for file in "$room"/*.{h,cpp}; do
            [ -f "$file" ] || continue
            sed -n 's|^#include "\(.*\)/[^/]*"$|\1|p' "$file" | while read -r folder; do
                [[ " $own $uses " == *" $folder "* ]] || echo "$file: may not include $folder/"
            done
        done
    done < <(grep . <<<"$rooms")
    find ./*/src ./*/include -name '*.h' -printf '%P %p\n' | while read -r _ file; do
        folder=$(dirname "${file#./}")
        grep -q "^$folder\( \|$\)" <<<"$rooms" || [[ $folder == Benchmark/* ]] || echo "$folder: no room"
    done | sort -u
} | { ! grep .; }
