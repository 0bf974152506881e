#!/usr/bin/env bash
# Builds and runs all tests, once as they are released and once under the address and undefined-behaviour sanitizers.
# The test with threads runs under the thread sanitizer as well.
set -euo pipefail
source "$(dirname "$0")/setup.sh"

install_packages
for preset in release sanitize; do
    build "$preset"
    ctest --preset "$preset" -j "$(nproc)"
done
build tsan threads_test
build/tsan/bin/threads_test --gtest_brief=1
