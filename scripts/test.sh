#!/usr/bin/env bash
# Builds and runs all tests, once as they are released and once under the address and undefined-behaviour sanitizers.
set -euo pipefail
source "$(dirname "$0")/setup.sh"

install_packages
for preset in release sanitize; do
    build "$preset"
    ctest --preset "$preset" -j "$(nproc)"
done
