#!/usr/bin/env bash
# What telvane --headless costs a small box in a cabinet: CPU time per idle tick and per
# measurement round, and memory after 1,000 and 10,000 ticks, on the demo plant, in
# simulation and against the peer slave (pymodbus on a socat pty pair, answering as late
# as a 9600 baud line would for the rounds).
#
#   bench/bench_headless.sh [BUILD_DIR]        (default: build)
#
# Each figure comes from two runs of the built program that differ only in the number of
# ticks, timed by /usr/bin/time: the difference of their CPU times divided by the
# difference of their ticks (or rounds) leaves out start-up and exit. A tick runs every
# millisecond (--tick-ms 1); the periods stay counted in ticks. In simulation every round
# pauses 250 ms by design, which costs time, not CPU. The machine may be shared: the load
# average is printed with the figures. Not a test; ctest does not run it.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build}
telvane=$build/app/telvane
slave_script=$root/tests/peer/modbus_slave.py
for tool in "$telvane" /usr/bin/time /usr/bin/python3 socat; do
    command -v "$tool" >/dev/null || { echo "bench_headless: $tool is missing (build first?)" >&2; exit 2; }
done

work=$(mktemp -d)
socat_pid=
slave_pid=
stop_peer() {
    [[ -n $slave_pid ]] && kill "$slave_pid" 2>/dev/null && wait "$slave_pid" 2>/dev/null || true
    [[ -n $socat_pid ]] && kill "$socat_pid" 2>/dev/null && wait "$socat_pid" 2>/dev/null || true
    slave_pid= socat_pid=
}
trap 'stop_peer; rm -rf "$work"' EXIT

# The slaves of the demo plant: zones 1..6 (five registers and the remote coil), the
# switches, LED and door opener on 7.
start_peer() { # [wire delay baud]
    socat pty,raw,echo=0,link="$work/master" pty,raw,echo=0,link="$work/slave" 2>/dev/null &
    socat_pid=$!
    for _ in $(seq 50); do [[ -e $work/slave ]] && break; sleep 0.1; done
    local slaves=()
    for unit in 1 2 3 4 5 6; do slaves+=(--slave "$unit hr:1=215,2=200,3=300,4=310,5=320 co:1=1"); done
    slaves+=(--slave "7 co:1=1,2=0,5=0,9=1 hr:20=1 di:4=1")
    /usr/bin/python3 "$slave_script" --port "$work/slave" "${slaves[@]}" ${1:+--wire-delay-baud "$1"} &
    slave_pid=$!
    sleep 2
}

# A copy of the demo plant with some keys of [COM] changed: KEY=VALUE...
plant() { # name KEY=VALUE...
    local dir=$work/$1
    shift
    rm -rf "$dir"
    mkdir -p "$dir"
    cp -r "$root/demo/plant/." "$dir/"
    for setting in "$@"; do
        sed -i "/^\[COM\]/,/^\[/ s|^${setting%%=*}=.*|${setting}\r|" "$dir/Telvane1.ini"
    done
    echo "$dir"
}

# Runs the program; prints "cpu_seconds max_rss_kb".
run() { # dir mode ticks
    rm -rf "$1/Dati"
    /usr/bin/time -f "%U %S %M" -o "$work/time" "$telvane" --headless "--$2" --dir "$1" --ticks "$3" --tick-ms 1 \
        >/dev/null 2>"$work/stderr" || { echo "bench_headless: run failed:" >&2; cat "$work/stderr" >&2; exit 1; }
    awk '{ printf "%.3f %d\n", $1 + $2, $3 }' "$work/time"
}

# CPU milliseconds per tick between two runs of n1 and n2 ticks.
per_tick() { # dir mode n1 n2
    local a b
    a=$(run "$1" "$2" "$3")
    b=$(run "$1" "$2" "$4")
    awk -v a="${a%% *}" -v b="${b%% *}" -v n="$(($4 - $3))" 'BEGIN { printf "%.4f", (b - a) * 1000 / n }'
}

declare -A figure
idle_ticks() { # mode port
    # Nothing due on a tick: no round, no remote/local exchange, no LED read, no activity poll.
    local dir
    dir=$(plant idle-$1 "Porta=$2" "Base Misura=0" "Base Remoto=0" "Base LED=0" "Attivita=0")
    figure[$1,idle]=$(per_tick "$dir" "$1" 1000 10000)
}
rounds() { # mode port
    # A round on every tick, nothing else; the idle tick taken off.
    local dir tick
    dir=$(plant rounds-$1 "Porta=$2" "Base Misura=1" "Base Remoto=0" "Base LED=0" "Attivita=0")
    tick=$(per_tick "$dir" "$1" 20 100)
    figure[$1,round]=$(awk -v t="$tick" -v i="${figure[$1,idle]}" 'BEGIN { printf "%.3f", t - i }')
}
shipped() { # mode port
    # The demo plant as shipped (a round every 60 ticks, exchanges and lamps every 3, the
    # activity poll in between): the average tick, and the memory.
    local dir r1 r10
    dir=$(plant shipped-$1 "Porta=$2")
    r1=$(run "$dir" "$1" 1000)
    r10=$(run "$dir" "$1" 10000)
    figure[$1,average]=$(awk -v a="${r1%% *}" -v b="${r10%% *}" 'BEGIN { printf "%.4f", (b - a) * 1000 / 9000 }')
    figure[$1,rss1k]=${r1##* }
    figure[$1,rss10k]=${r10##* }
}

echo "bench_headless: $(nproc) CPUs, load average $(cut -d' ' -f1-3 /proc/loadavg)" >&2
idle_ticks simulate /nessuna-porta
rounds simulate /nessuna-porta
shipped simulate /nessuna-porta
# Ten thousand ticks of the shipped plant at 9600 baud would take most of an hour: the
# slave answers at once for those, and at line speed for the rounds.
start_peer
idle_ticks communicate "$work/master"
shipped communicate "$work/master"
stop_peer
start_peer 9600
rounds communicate "$work/master"
stop_peer

printf '\n| telvane --headless, demo plant | simulate | communicate (peer slave) |\n|---|---|---|\n'
printf '| CPU per idle tick (ms) | %s | %s |\n' "${figure[simulate,idle]}" "${figure[communicate,idle]}"
printf '| CPU per measurement round, 6 zones + switch states (ms; peer at 9600 baud) | %s | %s |\n' "${figure[simulate,round]}" "${figure[communicate,round]}"
printf '| CPU per tick, plant as shipped (ms) | %s | %s |\n' "${figure[simulate,average]}" "${figure[communicate,average]}"
printf '| max RSS after 1,000 ticks (KiB) | %s | %s |\n' "${figure[simulate,rss1k]}" "${figure[communicate,rss1k]}"
printf '| max RSS after 10,000 ticks (KiB) | %s | %s |\n' "${figure[simulate,rss10k]}" "${figure[communicate,rss10k]}"
echo "bench_headless: load average now $(cut -d' ' -f1-3 /proc/loadavg)" >&2
