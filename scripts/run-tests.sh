#!/usr/bin/env bash
# Installs what the tests need as well, builds, and runs every test (unit, integration,
# gui, peer). scripts/sanitize-tests.sh runs the unit and integration tests built with
# the address and undefined-behaviour sanitizers.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh --test
scripts/build.sh
cd build
ctest --output-on-failure -j2 "$@"
