#!/bin/sh
# Builds every fuzz target with clang and libFuzzer in build/fuzz and runs each for a while, then
# prints one line per target: its executions, and its findings (crash, leak, time-out and
# out-of-memory files that libFuzzer left in build/fuzz/findings/).
# Usage: fuzz/run.sh [seconds per target, default 60] [target...]
# With RUNS=N in the environment a target stops after N executions or the seconds, which first;
# TIMEOUT=S sets the seconds an input may take before it counts as a time-out (25; give more
# on a machine busy with other work, where a target at low priority can wait that long).
set -eu
seconds=${1:-60}
runs_limit=${RUNS:--1}
[ $# -gt 0 ] && shift
root=$(cd "$(dirname "$0")/.." && pwd)
build="$root/build/fuzz"
jobs=${JOBS:-2}

cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCMAKE_CXX_COMPILER=clang++ \
    -DCMAKE_CXX_FLAGS="-fsanitize=fuzzer-no-link" \
    -DTRENDAX_FUZZ=ON -DTRENDAX_SANITIZE=ON -DTRENDAX_BENCH=OFF >/dev/null

if [ $# -gt 0 ]; then
    targets=$*
else
    targets=$(cmake --build "$build" --target help |
        sed -n 's/^\.\.\. \(fuzz_[A-Za-z0-9_]*\).*/\1/p' | grep -v '_autogen' | grep -v '_replay$' || true)
fi
[ -n "$targets" ] || { echo "no fuzz targets found" >&2; exit 1; }

for target in $targets; do
    cmake --build "$build" --target "$target" -j"$jobs" >/dev/null
done

mkdir -p "$build/findings" "$build/logs"
summary=""
for target in $targets; do
    # fuzz_<subsystem>_<name>: seeds in fuzz/<subsystem>/corpus/<name>, else fuzz/<subsystem>/corpus.
    rest=${target#fuzz_}
    sub=${rest%%_*}
    name=${rest#*_}
    seeds="$root/fuzz/$sub/corpus/$name"
    [ -d "$seeds" ] || seeds="$root/fuzz/$sub/corpus"
    work="$build/corpus/$target"
    mkdir -p "$work"
    binary=$(find "$build/fuzz" -type f -name "$target" -perm -u+x | head -n 1)
    [ -n "$binary" ] || { echo "$target was not built" >&2; exit 1; }
    log="$build/logs/$target.log"
    echo "== $target for ${seconds}s (seeds: $seeds, log: $log)"
    before=$(ls "$build/findings" | grep -Ec "^$target-(crash|leak|timeout|oom)-" || true)
    # Leaks are checked: the targets free what they make. The sanitizer records no allocation
    # stacks (storing them took most of the time of targets that make many small strings, and
    # their store only grows, towards the memory limit) and gives freed memory back to the
    # system; run a finding again without ASAN_OPTIONS for the stacks of its allocations.
    status=0
    ASAN_OPTIONS=${ASAN_OPTIONS:-malloc_context_size=0:allocator_release_to_os_interval_ms=1000} \
    "$binary" -max_total_time="$seconds" -runs="$runs_limit" -rss_limit_mb=2048 -timeout="${TIMEOUT:-25}" \
        -print_final_stats=1 \
        -artifact_prefix="$build/findings/$target-" "$work" "$seeds" >"$log" 2>&1 || status=$?
    after=$(ls "$build/findings" | grep -Ec "^$target-(crash|leak|timeout|oom)-" || true)
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
    [ -n "$runs" ] || runs=$(sed -n 's/^#\([0-9]*\).*/\1/p' "$log" | tail -n 1)
    took=$(sed -n 's/^Done [0-9]* runs in \([0-9]*\) second.*/\1/p' "$log" | tail -n 1)
    line=$(printf '%-28s %12s executions in %6ss, findings: %d (exit %d)' \
        "$target" "${runs:-0}" "${took:-$seconds}" "$((after - before))" "$status")
    echo "$line"
    summary="$summary$line
"
done
echo "== summary"
printf '%s' "$summary"
