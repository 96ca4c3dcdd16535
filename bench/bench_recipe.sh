#!/usr/bin/env bash
# How long sending the demo plant's winter recipe takes against the peer slave (pymodbus
# on a socat pty pair, answering as late as a 9600 baud line would), next to what the
# recipe itself asks for: the line's own time for its frames plus the pauses written in
# the recipe (the zones' intervals and the SLEEP step).
#
#   bench/bench_recipe.sh [BUILD_DIR] [RUNS]       (defaults: build, 5)
#
# The send time is the difference between two runs of telvane --headless --ricetta that
# differ only in the recipe (the winter recipe, and one with no rows), so start-up and
# exit are left out. Each figure is the median of RUNS pairs. Not a test.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build}
runs=${2:-5}
telvane=$build/app/telvane
slave_script=$root/tests/peer/modbus_slave.py
for tool in "$telvane" /usr/bin/python3 socat; do
    command -v "$tool" >/dev/null || { echo "bench_recipe: $tool is missing (build first?)" >&2; exit 2; }
done

work=$(mktemp -d)
socat_pid=
slave_pid=
stop_peer() {
    [[ -n $slave_pid ]] && kill "$slave_pid" 2>/dev/null && wait "$slave_pid" 2>/dev/null || true
    [[ -n $socat_pid ]] && kill "$socat_pid" 2>/dev/null && wait "$socat_pid" 2>/dev/null || true
}
trap 'stop_peer; rm -rf "$work"' EXIT

socat pty,raw,echo=0,link="$work/master" pty,raw,echo=0,link="$work/slave" 2>/dev/null &
socat_pid=$!
for _ in $(seq 50); do [[ -e $work/slave ]] && break; sleep 0.1; done
slaves=()
for unit in 1 2 3 4 5 6; do slaves+=(--slave "$unit hr:1=215,2=200,3=300,4=310,5=320 co:1=1"); done
/usr/bin/python3 "$slave_script" --port "$work/slave" "${slaves[@]}" --wire-delay-baud 9600 &
slave_pid=$!
sleep 2

plant=$work/plant
cp -r "$root/demo/plant/." "$plant/"
sed -i "/^\[COM\]/,/^\[/ s|^Porta=.*|Porta=$work/master\r|" "$plant/Telvane1.ini"
printf '[File]\r\nID = Telvane\r\n' >"$plant/Ricetta/Vuota.prg"

# Wall milliseconds of one headless send of recipe $1.
send_ms() {
    local start end
    start=$(date +%s%N)
    "$telvane" --headless --communicate --dir "$plant" --ricetta "$1" >"$work/out" 2>"$work/err" ||
        { echo "bench_recipe: sending $1 failed:" >&2; cat "$work/out" "$work/err" >&2; exit 1; }
    end=$(date +%s%N)
    echo $(((end - start) / 1000000))
}

median() { sort -n | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }

sends=()
for _ in $(seq "$runs"); do
    empty=$(send_ms Vuota.prg)
    full=$(send_ms Inverno.prg)
    sends+=($((full - empty)))
done
writes=$(grep -c "scritto$" "$work/out")
measured=$(printf '%s\n' "${sends[@]}" | median)

# The recipe's own pauses: each zone's interval after each of its writes, and SLEEP.
pauses=$(awk -F'[=,;]' '
    /^\[Zona/ { interval = 200 }
    /^Intervallo/ { interval = $2 + 0 }
    /^[0-9][0-9] *=/ { code = $2 + 0; if (code == 5 || code == 6) total += interval; else if (toupper($3) ~ /SLEEP/) total += $4 }
    END { print total }' "$plant/Ricetta/Inverno.prg" | tr -d '\r')
# A write is an 8-byte request and an 8-byte echo of 10-bit characters, each frame
# followed by 3.5 characters of silence.
wire=$(awk -v n="$writes" 'BEGIN { printf "%.0f", n * (16 + 7) * 10 * 1000 / 9600 }')

echo "bench_recipe: $(nproc) CPUs, load average $(cut -d' ' -f1-3 /proc/loadavg)" >&2
printf '\n| demo winter recipe at 9600 baud (%d writes, median of %d) | ms |\n|---|---|\n' "$writes" "$runs"
printf '| measured send | %s |\n' "$measured"
printf '| line time of the frames | %s |\n' "$wire"
printf '| pauses the recipe asks for (intervals + SLEEP) | %s |\n' "$pauses"
printf '| overhead (measured - line - pauses) | %s |\n' "$((measured - wire - pauses))"
printf '| overhead per write | %s |\n' "$(awk -v o="$((measured - wire - pauses))" -v n="$writes" 'BEGIN { printf "%.1f", o / n }')"
