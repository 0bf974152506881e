#!/usr/bin/env bash
# Builds and runs all tests, once as they are released and once under the address and undefined-behaviour sanitizers.
# The test with threads runs under the thread sanitizer as well.
set -euo pipefail
source "$(dirname "$0")/setup.sh"

packages+=(sqlite3 cmark-gfm)
install_packages
if ! command -v chromium chromium-browser google-chrome google-chrome-stable >/dev/null; then
    echo "No browser is installed: the tests that open the page in one are skipped. apt-get install chromium" >&2
fi
for preset in release sanitize; do
    build "$preset"
    ctest --preset "$preset" -j "$(nproc)"
done
build tsan threads_test
build/tsan/bin/threads_test --gtest_brief=1
