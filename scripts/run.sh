#!/usr/bin/env bash
# Builds the viewer and shows the report of a log:
#
#   scripts/run.sh [LOG] [options]
#
# The options are those of zeb-profile-viewer (see its --help). Without a LOG a sample log is written and shown, and
# its CSV report is kept beside it.
set -euo pipefail
caller_dir=$PWD
source "$(dirname "$0")/setup.sh"

install_packages
build release zeb-profile-viewer write-sample-log ZebMurlProfilingReader ZebGenericProfilingReader
bin=$PWD/build/release/bin

case "${1-}" in
    "" | -*)
        sample=$PWD/build/sample
        mkdir -p "$sample"
        rm -f "$sample/sample.csv"
        "$bin/write-sample-log" "$sample/sample.zlog" >&2
        "$bin/zeb-profile-viewer" --csv "$sample/sample.csv" "$sample/sample.zlog" "$@"
        echo "The log is in $sample/sample.zlog, its CSV report in $sample/sample.csv" >&2
        ;;
    *)
        cd "$caller_dir"
        exec "$bin/zeb-profile-viewer" "$@"
        ;;
esac
