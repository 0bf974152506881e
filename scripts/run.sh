#!/usr/bin/env bash
# Builds the viewer and shows the report of a log:
#
#   scripts/run.sh [LOG] [options]
#
# The options are those of zeb-profile-viewer (see its --help). Without a LOG a sample is shown, which lies ready so that
# what writes it need not be built, and its CSV report is kept.
set -euo pipefail
caller_dir=$PWD
source "$(dirname "$0")/setup.sh"

install_packages
build release zeb-profile-viewer ZebMurlProfilingReader ZebGenericProfilingReader
bin=$PWD/build/release/bin

case "${1-}" in
    "" | -*)
        log=$PWD/examples/sample.zlog
        csv=$PWD/build/sample.csv
        rm -f "$csv"
        "$bin/zeb-profile-viewer" --csv "$csv" "$log" "$@"
        echo "The log is in $log, its CSV report in $csv" >&2
        ;;
    *)
        cd "$caller_dir"
        exec "$bin/zeb-profile-viewer" "$@"
        ;;
esac
