#!/usr/bin/env bash
# Builds the core and its unit and integration tests with AddressSanitizer and
# UndefinedBehaviorSanitizer into build-asan/ and runs them: any finding fails.
# Only the tests' targets are built: the core, the platform's devices and the tests, not
# the windows.
set -euo pipefail
cd "$(dirname "$0")/.."
export CCACHE_BASEDIR="$PWD"
export CCACHE_NOHASHDIR=1
labels='unit|integration'
if [ ! -f build-asan/CMakeCache.txt ]; then
  # -O1 with line tables only: quick to compile, and the findings still name file and line.
  cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-O1 -gline-tables-only" \
    -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
    -DTELVANE_SANITIZE=ON -DTELVANE_BUILD_FUZZ=OFF -DTELVANE_BUILD_BENCH=OFF >/dev/null
else
  cmake -S . -B build-asan >/dev/null
fi
# Every test is named after its executable.
mapfile -t targets < <(ctest --test-dir build-asan -N -L "$labels" | sed -n 's/^ *Test *#[0-9]*: //p')
[ ${#targets[@]} -gt 0 ] || { echo "sanitize-tests: no tests labelled $labels" >&2; exit 1; }
cmake --build build-asan -j2 --target "${targets[@]}"

export ASAN_OPTIONS="${ASAN_OPTIONS:-detect_stack_use_after_return=1}"
export UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}"
cd build-asan
ctest --output-on-failure -j2 -L "$labels" "$@"
