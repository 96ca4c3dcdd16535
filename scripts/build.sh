#!/usr/bin/env bash
# Configures and builds Telvane into build/ (clang, so the fuzz targets build too).
set -euo pipefail
cd "$(dirname "$0")/.."
# Paths relative to the checkout, so a fresh clone reuses what ccache already compiled.
export CCACHE_BASEDIR="$PWD"
# Debug info names the build folder; without this every checkout (worktree, CI clone)
# would miss the cache.
export CCACHE_NOHASHDIR=1
if [ ! -f build/CMakeCache.txt ]; then
  cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++
fi
cmake --build build -j2
