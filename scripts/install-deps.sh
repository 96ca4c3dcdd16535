#!/usr/bin/env bash
# Installs what Telvane needs to build, run and test on Debian 12. Quiet and quick
# when everything is already there.
set -euo pipefail

packages=(
  cmake ninja-build g++ clang libclang-rt-14-dev ccache pkg-config
  qt6-base-dev qt6-serialport-dev qt6-charts-dev libqt6opengl6-dev qt6-multimedia-dev qt6-svg-dev
  qt6-qpa-plugins libqt6svg6 xvfb xauth
  socat python3-pymodbus python3-serial python3-serial-asyncio libmodbus-dev libbenchmark-dev poppler-utils
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo=""
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || { echo "Servono i permessi di root per installare: ${missing[*]}" >&2; exit 1; }
  sudo="sudo"
fi
echo "Installo: ${missing[*]}"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "${missing[@]}"
