#!/usr/bin/env bash
# Installs what Telvane needs on Debian 12: to build and run it, and with --test also
# what the tests, the fuzz targets and the benchmarks use. Quiet and quick when
# everything is already there.
set -euo pipefail

packages=(
  cmake ninja-build g++ clang ccache pkg-config
  qt6-base-dev qt6-charts-dev libqt6opengl6-dev qt6-multimedia-dev qt6-svg-dev
  qt6-qpa-plugins libqt6svg6
)
if [ "${1:-}" = "--test" ]; then
  packages+=(
    libclang-rt-14-dev xvfb xauth
    socat python3-pymodbus python3-serial python3-serial-asyncio libmodbus-dev libbenchmark-dev poppler-utils systemd
  )
elif [ $# -gt 0 ]; then
  echo "Uso: $0 [--test]" >&2
  exit 2
fi

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
