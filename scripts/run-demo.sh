#!/usr/bin/env bash
# Installs what is needed, builds, and runs Telvane on the demo plant in simulation.
# The demo is copied once into a working folder; later runs keep the user's changes.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
scripts/build.sh telvane telvane-probe
plant="${TELVANE_PLANT:-$HOME/telvane-demo}"
mkdir -p "$plant"
cp -r -n demo/plant/. "$plant"/
exec build/app/telvane --dir "$plant" --simulate "$@"
