#!/usr/bin/env bash
# A long run of telvane --headless on the demo plant: resident memory at the start and at
# the end, and one line in the day's files for every measurement round begun (none lost).
#
#   bench/bench_soak.sh simulate [TICKS]                      (default 100000, a tick every ms)
#   bench/bench_soak.sh communicate [SECONDS] [FAULT_EVERY]   (default 7200 and 180)
#
# simulate: the given number of ticks at a 1 ms tick with the plant's own periods (a round
# every 60 ticks, each pausing 250 ms by design: 100,000 ticks take about 8 minutes).
# communicate: against the peer slave (pymodbus on a socat pty pair), a tick every 100 ms,
# a round every 10 ticks and a 200 ms reply time-out; every FAULT_EVERY seconds a fault
# lasting 30 s, in turn the slave falling silent (killed, the line kept) and the line
# vanishing (socat killed too), both then started again on the same path. Stopped by
# SIGTERM at the end, which may cut the last round short (it then writes no line).
# Not a test; ctest does not run it.
#
#   BUILD_DIR=... to use another build folder.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$root/build}
telvane=$build/app/telvane
slave_script=$root/tests/peer/modbus_slave.py
mode=${1:-}
[[ $mode == simulate || $mode == communicate ]] || { echo "Uso: $0 simulate [TICKS] | communicate [SECONDS] [FAULT_EVERY]" >&2; exit 2; }
for tool in "$telvane" /usr/bin/python3 socat; do
    command -v "$tool" >/dev/null || { echo "bench_soak: $tool is missing (build first?)" >&2; exit 2; }
done

work=$(mktemp -d)
socat_pid= slave_pid= program_pid=
stop_slave() { [[ -n $slave_pid ]] && kill "$slave_pid" 2>/dev/null && wait "$slave_pid" 2>/dev/null || true; slave_pid=; }
# A killed socat leaves its links behind, naming pty numbers that the next pty pair on the
# machine may be given: remove them, as an unplugged adapter's device goes.
stop_socat() {
    [[ -n $socat_pid ]] && kill -9 "$socat_pid" 2>/dev/null && wait "$socat_pid" 2>/dev/null || true
    socat_pid=
    rm -f "$work/master" "$work/slave"
}
cleanup() {
    [[ -n $program_pid ]] && kill "$program_pid" 2>/dev/null || true
    stop_slave
    stop_socat
    rm -rf "$work"
}
trap cleanup EXIT

start_socat() {
    rm -f "$work/master" "$work/slave"
    socat pty,raw,echo=0,link="$work/master" pty,raw,echo=0,link="$work/slave" 2>/dev/null &
    socat_pid=$!
    for _ in $(seq 50); do [[ -e $work/slave ]] && break; sleep 0.1; done
}
# The demo plant's slaves: zones 1..6, the switches, LED and door opener on 7.
start_slave() {
    local slaves=()
    for unit in 1 2 3 4 5 6; do slaves+=(--slave "$unit hr:1=215,2=200,3=300,4=310,5=320 co:1=1"); done
    slaves+=(--slave "7 co:1=1,2=0,5=0,9=1 hr:20=1 di:4=1")
    /usr/bin/python3 "$slave_script" --port "$work/slave" "${slaves[@]}" &
    slave_pid=$!
}

# A copy of the demo plant with some keys of [COM] changed: KEY=VALUE...
plant=$work/plant
mkdir -p "$plant"
cp -r "$root/demo/plant/." "$plant/"
set_com() {
    for setting in "$@"; do
        sed -i "/^\[COM\]/,/^\[/ s|^${setting%%=*}=.*|${setting}\r|" "$plant/Telvane1.ini"
    done
}

rss_kb() { awk '/^VmRSS:/ { print $2 }' "/proc/$1/status" 2>/dev/null || true; }

echo "bench_soak: $mode, $(nproc) CPUs, load average $(cut -d' ' -f1-3 /proc/loadavg)" >&2
out=$work/out
started=$(date +%s)
if [[ $mode == simulate ]]; then
    ticks=${2:-100000}
    "$telvane" --headless --simulate --dir "$plant" --tick-ms 1 --ticks "$ticks" >"$out" 2>"$work/stderr" &
    program_pid=$!
else
    seconds=${2:-7200}
    fault_every=${3:-180}
    start_socat
    start_slave
    sleep 2
    set_com "Porta=$work/master" "Base Misura=10" "TimeOut=200"
    "$telvane" --headless --communicate --dir "$plant" --tick-ms 100 >"$out" 2>"$work/stderr" &
    program_pid=$!
fi

sleep 2
rss_start=$(rss_kb "$program_pid")
rss_end=$rss_start
rss_max=$rss_start
faults=0
next_fault=$((started + ${fault_every:-0}))
while kill -0 "$program_pid" 2>/dev/null; do
    now=$(date +%s)
    if [[ $mode == communicate ]]; then
        if ((now - started >= seconds)); then
            kill -TERM "$program_pid"
            break
        fi
        if ((now >= next_fault)); then
            faults=$((faults + 1))
            if ((faults % 2 == 1)); then
                echo "bench_soak: fault $faults at $((now - started)) s: the slave falls silent for 30 s" >&2
                stop_slave
                sleep 30
                start_slave
            else
                echo "bench_soak: fault $faults at $((now - started)) s: the line vanishes for 30 s" >&2
                stop_slave
                stop_socat
                sleep 30
                start_socat
                start_slave
            fi
            next_fault=$(($(date +%s) + fault_every))
        fi
    fi
    rss=$(rss_kb "$program_pid")
    if [[ -n $rss ]]; then
        rss_end=$rss
        ((rss > rss_max)) && rss_max=$rss
    fi
    sleep 2
done
status=0
wait "$program_pid" || status=$?
program_pid=
elapsed=$(($(date +%s) - started))

rounds=$(grep -c '^Pannello 3: Lettura\.\.\.$' "$out" || true)
lines=$(cat "$plant"/Dati/????_??_??.csv 2>/dev/null | tr -d '\r' | grep -c . || true)
alarms=$(grep -c '^Allarme:' "$out" || true)
port_lines=$(grep -c 'Porta seriale' "$work/stderr" || true)
echo
echo "| bench_soak $mode | |"
echo "|---|---|"
echo "| run | ${elapsed} s, exit status $status |"
[[ $mode == simulate ]] && echo "| ticks | $ticks at 1 ms |"
[[ $mode == communicate ]] && echo "| faults | $faults (every $fault_every s; $port_lines lines about the port in the log) |"
echo "| measurement rounds begun | $rounds |"
echo "| lines in the day's files | $lines |"
echo "| rounds without a line | $((rounds - lines)) |"
echo "| alarm entries | $alarms |"
echo "| resident memory, start / end / highest | $rss_start / $rss_end / $rss_max KiB |"
echo "bench_soak: load average now $(cut -d' ' -f1-3 /proc/loadavg)" >&2
