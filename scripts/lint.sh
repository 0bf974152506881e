#!/usr/bin/env bash
# Checks the layout and runs the static analysis over all sources, or over the files named. Silent when all is well.
set -euo pipefail
source "$(dirname "$0")/setup.sh"

packages+=(clang-format clang-tidy libbenchmark-dev)
install_packages
cmake --preset debug -DZEB_BUILD_BENCHMARKS=ON >&2
cmake --build --preset debug >&2 # the schema's header has to be there

if [ "$#" -gt 0 ]; then
    files=("$@")
else
    mapfile -t files < <(git ls-files '*.cpp' '*.h')
fi
clang-format --dry-run --Werror "${files[@]}"
# Of PartsBenchmark the analysis takes Google Benchmark's own registry for a leak.
printf '%s\n' "${files[@]}" | { grep '\.cpp$' || true; } | { grep -v '/PartsBenchmark\.cpp$' || true; } |
    xargs -r -n 4 -P "$(nproc)" clang-tidy -p build/debug --quiet 2>/dev/null
