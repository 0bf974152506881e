#!/usr/bin/env bash
# Makes the pictures of the documentation in docs/pictures from the sample log.
set -euo pipefail
source "$(dirname "$0")/setup.sh"

packages+=(chromium fonts-dejavu-core pngquant)
install_packages
build release zeb-profile-viewer write-sample-log
bin=$PWD/build/release/bin
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cd "$work"
"$bin/write-sample-log" sample.zlog >&2
"$bin/zeb-profile-viewer" --html - sample.zlog >page.html
chromium --headless=new --no-sandbox --disable-gpu --hide-scrollbars --user-data-dir="$work/profile" \
    --window-size=1180,1560 --screenshot="$work/page.png" "file://$work/page.html" 2>/dev/null
cd - >/dev/null
mkdir -p docs/pictures
pngquant --force --output docs/pictures/page.png 64 "$work/page.png"
