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

# Three days of logged rounds (one a minute, up to now) for the trend and history windows.
python3 - "$plant" <<'PY'
import datetime, math, os, sys
folder = os.path.join(sys.argv[1], "Dati")
os.makedirs(folder, exist_ok=True)
now = datetime.datetime.now().replace(microsecond=0)
start = (now - datetime.timedelta(days=2)).replace(hour=0, minute=0, second=0)
files = {}
t = start
while t <= now:
    hours = (t - start).total_seconds() / 3600
    values = []
    for zone in range(6):
        value = 19 + zone * 0.8 + 2.5 * math.sin((hours - 7 - zone) * math.pi / 12) + 0.3 * math.sin(hours * 5 + zone)
        values.append("-99999.0" if zone == 4 and 30 < hours < 33 else "%.1f" % value)
    line = t.strftime("%d/%m/%Y %H:%M:%S") + ";" + "".join(v + ";" for v in values) + "\r\n"
    files.setdefault(t.strftime("%Y_%m_%d.csv"), []).append(line)
    t += datetime.timedelta(minutes=1)
for name, lines in files.items():
    with open(os.path.join(folder, name), "w", newline="") as f:
        f.writelines(lines)
PY

mkdir -p docs/screenshots
shoot() {
  xvfb-run -a -s "-screen 0 1280x800x24" \
    build/app/telvane --dir "$plant" --simulate --screenshot "docs/screenshots/$1.png" ${2:+--open "$2"}
  echo "docs/screenshots/$1.png"
}
shoot mainwindow
shoot grafico MenuGrafico
shoot storico MenuStorico
shoot comunicazioni MenuComunicazione
