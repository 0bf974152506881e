#!/usr/bin/env bash
# Installs a build into an empty directory, moves it, and uses it from outside as a user, a host and a plug-in do.
# Prints what is not as it should be. With a PREFIX it tries the installation that is there, which was made elsewhere.
#
#   scripts/try-install.sh BUILD_DIRECTORY [PREFIX]
set -euo pipefail
build=$(cd "$1" && pwd)
cd "$(dirname "${BASH_SOURCE[0]}")/.."

commands=(zeb-profile-viewer zeb-profile-compare zeb-profile-export zeb-profile-history write-sample-log)
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
cache_value() { sed -n "s/^$1:[A-Z]*=//p" "$build/CMakeCache.txt"; }
compiler=$(cache_value CMAKE_CXX_COMPILER)
generator=$(cache_value CMAKE_GENERATOR)
lib=$(cache_value CMAKE_INSTALL_LIBDIR)

fault() {
    echo "$*"
    exit 1
}

quietly() {
    "$@" >"$place/log" 2>&1 || { cat "$place/log"; fault "failed: $*"; }
}

install_and_move() {
    quietly cmake --install "$build" --prefix "$place/first"
    {
        for command in "${commands[@]}"; do
            echo "bin/$command"
            echo "share/bash-completion/completions/$command"
            echo "share/fish/vendor_completions.d/$command.fish"
            echo "share/man/man1/$command.1"
            echo "share/zsh/site-functions/_$command"
        done
        echo "include/zeb/profiling/IZebProfileLogReader.h
include/zeb/profiling/ParsedArgs.h
include/zeb/profiling/ReaderExports.h
include/zeb/profiling/Version.h
include/zeb/profiling/VisibilityLevel.h
$lib/cmake/ZebProfiling/ZebProfilingConfig.cmake
$lib/cmake/ZebProfiling/ZebProfilingConfigVersion.cmake
$lib/libZebGenericProfilingReader.so
$lib/libZebMurlProfilingReader.so
$lib/pkgconfig/zeb-profiling.pc
share/doc/zeb-profiler/CHANGELOG.md
share/doc/zeb-profiler/LICENSE
share/doc/zeb-profiler/README.md"
    } | sort | diff - <(cd "$place/first" && find . -type f -printf '%P\n' | sort)
    # Nothing in it knows where it was put first, and nothing is found in the build.
    mv "$place/first" "$place/second"
    prefix=$place/second
}

prefix=${2:-}
[ -n "$prefix" ] || install_and_move
source=$PWD
cd "$place"
PATH=$prefix/bin:$PATH
write-sample-log run.log
zeb-profile-viewer run.log >report
zeb-profile-viewer run.log --internal >internal
grep -q '^ZEB Per-layer Stats:$' report || fault "the report has no layers"
zeb-profile-viewer --reader generic run.log >generic
grep -q '^Execut' generic || fault "the generic reader has no report"

build_example() {
    quietly cmake -S "$source/examples/$1" -B "$1" -G "$generator" -DCMAKE_PREFIX_PATH="$prefix" \
        -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_FLAGS="-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror"
    quietly cmake --build "$1"
}
build_example host
host/my-host run.log | diff report -
host/my-host run.log --internal | diff internal -
host/my-host none.log >none && fault "a host takes a log that is not there"

build_example plugin
zeb-profile-viewer --reader ./plugin/libChunkCounter.so --csv chunks.csv run.log --bytes >counted
size=$(stat -c %s run.log)
chunks=$(sed -n 's/^chunks: //p' counted)
printf 'chunks: %d\nbytes: %d\n' "$chunks" $((size - 4 * chunks)) | diff - counted
printf '%d,%d\n' "$chunks" $((size - 4 * chunks)) | diff - chunks.csv

zeb-profile-compare run.log run.log >comparison
grep -q '^Graph' comparison || fault "nothing is compared"

batch=$(zeb-profile-export --to batches run.log)
grep -q '^run_id,' "$batch/runs.csv" || fault "there is no table of runs"

zeb-profile-history run.log >history
grep -q '^1 version of 1 run: run.log' history || fault "there is no history"

# The version is one and the same, and the commands know of what build they are.
for command in "${commands[@]}"; do
    "$command" --version >version
    sed 1d version | grep -q "^Built by [A-Za-z]* [0-9.]* for " || fault "$command knows no build"
done
version=$(zeb-profile-viewer --version | sed -n '1s/^zeb-profile-viewer v\([0-9]*\.[0-9]*\.[0-9]*\)\.[0-9]*$/\1/p')
export PKG_CONFIG_PATH=$prefix/$lib/pkgconfig
diff <(echo "$version") <(pkg-config --modversion zeb-profiling)
diff <(echo "$version") <(sed -n 's/^## \[\([0-9.]*\)\].*/\1/p' "$source/CHANGELOG.md" | sed -n 1p)
zcat -f "$prefix"/share/man/man1/zeb-profile-viewer.1* >page
grep -q "^\.TH ZEB.* $version " page ||
    fault "the manual page is of another version than $version"
read -ra flags < <(pkg-config --cflags zeb-profiling)
echo '#include "zeb/profiling/ReaderExports.h"' | "$compiler" -std=c++20 "${flags[@]}" -fsyntax-only -x c++ -
test -f "$(pkg-config --variable=murl_reader zeb-profiling)"
