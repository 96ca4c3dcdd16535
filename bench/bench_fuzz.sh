#!/usr/bin/env bash
# Runs every fuzz target for a while (60 s each unless told) on its stored corpus,
# fuzz/corpus/<name>/ for fuzz_<name>, and prints what each reached. What a run finds
# goes to a scratch folder, never into the source tree; a crash keeps its input there
# and makes the script fail. Not a test; ctest runs the same targets for 10 s.
#
#   bench/bench_fuzz.sh [-t SECONDS] [-u] [BUILD_DIR]     (default: 60 s, build)
#
# -u folds what the runs found back into fuzz/corpus/, only the inputs that reach code no
# stored input reaches (edges, not hit counts, so the corpora stay a few dozen files), for
# refreshing them after a target's input changes.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
seconds=60
update=
while getopts "t:u" option; do
    case $option in
    t) seconds=$OPTARG ;;
    u) update=1 ;;
    *) echo "Uso: $0 [-t SECONDI] [-u] [CARTELLA_BUILD]" >&2; exit 2 ;;
    esac
done
shift $((OPTIND - 1))
build=${1:-$root/build}
targets=("$build"/fuzz/fuzz_*)
[[ -x ${targets[0]} ]] || { echo "bench_fuzz: no fuzz targets in $build/fuzz (build with clang and libclang-rt-14-dev)" >&2; exit 2; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
echo "bench_fuzz: $(nproc) CPUs, load average $(cut -d' ' -f1-3 /proc/loadavg), $seconds s each" >&2

failed=0
printf '| target | stored inputs | runs | runs/s | coverage (edges) | features | new inputs | result |\n|---|---|---|---|---|---|---|---|\n'
for target in "${targets[@]}"; do
    [[ -x $target && ! -d $target ]] || continue
    name=$(basename "$target")
    corpus=$root/fuzz/corpus/${name#fuzz_}
    mkdir -p "$corpus" "$work/$name/found" "$work/$name/artifacts"
    stored=$(find "$corpus" -type f | wc -l)
    result=ok
    "$target" -max_total_time="$seconds" -rss_limit_mb=4096 -max_len=65536 -print_final_stats=1 \
        -artifact_prefix="$work/$name/artifacts/" "$work/$name/found" "$corpus" >"$work/$name/log" 2>&1 || result=FAILED
    if [[ $result != ok ]]; then
        failed=1
        mkdir -p "$build/fuzz/findings"
        cp -r "$work/$name/artifacts/." "$build/fuzz/findings/" 2>/dev/null || true
        grep -m1 -E 'ERROR|runtime error|deadly signal' "$work/$name/log" >&2 || true
        echo "bench_fuzz: $name failed; its log ends:" >&2
        tail -20 "$work/$name/log" >&2
    fi
    # "#123456 DONE cov: 812 ft: 2301 corp: 140/9Kb ..." and the final stats.
    done_line=$(grep -E '^#[0-9]+[[:space:]]+(DONE|pulse|NEW|REDUCE)' "$work/$name/log" | tail -1 || true)
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$work/$name/log")
    rate=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$work/$name/log")
    coverage=$(sed -n 's/.* cov: \([0-9]*\).*/\1/p' <<<"$done_line")
    features=$(sed -n 's/.* ft: \([0-9]*\).*/\1/p' <<<"$done_line")
    found=$(find "$work/$name/found" -type f | wc -l)
    printf '| %s | %s | %s | %s | %s | %s | %s | %s |\n' "$name" "$stored" "${runs:-?}" "${rate:-?}" \
        "${coverage:-?}" "${features:-?}" "$found" "$result"
    if [[ -n $update && $result == ok ]]; then
        "$target" -merge=1 -use_counters=0 -use_cmp=0 -max_len=65536 "$corpus" "$work/$name/found" >/dev/null 2>&1
    fi
done
echo "bench_fuzz: load average now $(cut -d' ' -f1-3 /proc/loadavg)" >&2
exit $failed
