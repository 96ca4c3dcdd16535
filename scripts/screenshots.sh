#!/usr/bin/env bash
# Takes the documentation's screenshots: the program runs on a fresh copy of the demo
# plant, in simulation, on a virtual 1280x800 screen, and saves its own main window.
set -euo pipefail
cd "$(dirname "$0")/.."
[ -x build/app/telvane ] || scripts/build.sh
cmake --build build -j2 --target telvane

plant="$(mktemp -d)"
trap 'rm -rf "$plant"' EXIT
cp -r demo/plant/. "$plant"/

mkdir -p docs/screenshots
xvfb-run -a -s "-screen 0 1280x800x24" \
  build/app/telvane --dir "$plant" --simulate --screenshot docs/screenshots/mainwindow.png
xvfb-run -a -s "-screen 0 1280x800x24" \
  build/app/telvane --dir "$plant" --simulate --screenshot-editor docs/screenshots/comunicazioni.png
echo "docs/screenshots/mainwindow.png docs/screenshots/comunicazioni.png"
