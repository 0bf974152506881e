#!/usr/bin/env bash
# Checks the layout and runs the static analysis over all sources, or over the files named; over the pages' scripts it runs
# Prettier and ESLint, which npm brings. Silent when all is well.
set -euo pipefail
source "$(dirname "$0")/setup.sh"

packages+=(clang-format clang-tidy libbenchmark-dev)
command -v npm >/dev/null || packages+=(npm) # which may have come with another Node.js than Debian's
install_packages
if [ "$#" -gt 0 ]; then
    files=("$@")
else
    mapfile -t files < <(git ls-files '*.cpp' '*.h' '*.js')
fi
mapfile -t scripts < <(printf '%s\n' "${files[@]}" | grep '\.js$' || true)
mapfile -t files < <(printf '%s\n' "${files[@]}" | grep -v '\.js$' || true)
if [ "${#scripts[@]}" -gt 0 ]; then
    npx --yes prettier@3.10.1 --log-level warn --check "${scripts[@]}"
    npx --yes eslint@9.39.5 --config Tools/Utilities/Profiler/Forms/eslint.config.mjs "${scripts[@]}"
fi
[ "${#files[@]}" -gt 0 ] || exit 0
cmake --preset debug -DZEB_BUILD_BENCHMARKS=ON >&2
cmake --build --preset debug >&2 # the schema's header has to be there

clang-format --dry-run --Werror "${files[@]}"
# Of PartsBenchmark the analysis takes Google Benchmark's own registry for a leak.
printf '%s\n' "${files[@]}" | { grep '\.cpp$' || true; } | { grep -v '/PartsBenchmark\.cpp$' || true; } |
    xargs -r -n 4 -P "$(nproc)" clang-tidy -p build/debug --quiet 2>/dev/null
