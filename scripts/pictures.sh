#!/usr/bin/env bash
# Makes the pictures of the documentation in docs/pictures from the sample log: its page, and its timeline in a trace viewer.
set -euo pipefail
source "$(dirname "$0")/setup.sh"

packages+=(chromium fonts-dejavu-core fonts-noto-color-emoji pngquant)
command -v npm >/dev/null || packages+=(npm) # which may have come with another Node.js than Debian's
install_packages
build release zeb-profile-viewer
bin=$PWD/build/release/bin
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p docs/pictures

# picture NAME WIDTH,HEIGHT URL [OPTION...]
picture() {
    local name=$1 size=$2 url=$3
    shift 3
    chromium --headless=new --no-sandbox --hide-scrollbars --user-data-dir="$work/profile" --window-size="$size" "$@" \
        --screenshot="$work/$name.png" "$url" 2>/dev/null
    pngquant --force --output "docs/pictures/$name.png" 64 "$work/$name.png"
}

cp examples/sample.zlog "$work"
(cd "$work" && "$bin/zeb-profile-viewer" --html - sample.zlog >page.html) # which shows the path as it is given
picture page 1180,1560 "file://$work/page.html" --disable-gpu --virtual-time-budget=4000

# The viewer begins with the first track of a file and shows one at a time, so the file of the picture has one.
(cd "$work" && npm pack speedscope@1.25.0 --silent >/dev/null && tar xzf speedscope-*.tgz)
"$bin/zeb-profile-viewer" --trace - --trace-plain "$work/sample.zlog" | python3 -c '
import base64, json, sys
trace = json.load(sys.stdin)
names = {(event["pid"], event["tid"]): event["args"]["name"] for event in trace["traceEvents"] if event["name"] == "thread_name"}
shown = next(track for track, name in names.items() if name == "ZEB layers")
trace["traceEvents"] = [event for event in trace["traceEvents"] if (event["pid"], event["tid"]) in (shown, (shown[0], 0))]
data = base64.b64encode(json.dumps(trace).encode()).decode()
print(f"speedscope.loadFileFromBase64(\"sample.json\", \"{data}\")")' >"$work/sample.js"
picture timeline 1180,200 "file://$work/package/dist/release/index.html#localProfilePath=$work/sample.js" \
    --allow-file-access-from-files --use-angle=swiftshader --enable-unsafe-swiftshader --ignore-gpu-blocklist --virtual-time-budget=8000
