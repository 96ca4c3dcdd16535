#!/usr/bin/env bash
# Installs what the tests need as well, builds, and runs every test (unit, integration,
# gui, peer), then the unit and integration tests again built with the address and
# undefined-behaviour sanitizers (scripts/sanitize-tests.sh): any finding fails.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh --test
scripts/build.sh
(cd build && ctest --output-on-failure -j2 "$@")
scripts/sanitize-tests.sh
