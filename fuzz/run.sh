#!/bin/sh
# Builds every fuzz target with clang and libFuzzer in build/fuzz and runs each for a while.
# Usage: fuzz/run.sh [seconds per target, default 60]
set -eu
seconds=${1:-60}
root=$(cd "$(dirname "$0")/.." && pwd)
build="$root/build/fuzz"
jobs=${JOBS:-2}

cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCMAKE_CXX_COMPILER=clang++ \
    -DCMAKE_CXX_FLAGS="-fsanitize=fuzzer-no-link" \
    -DTRENDAX_FUZZ=ON -DTRENDAX_SANITIZE=ON -DTRENDAX_BENCH=OFF >/dev/null

targets=$(cmake --build "$build" --target help |
    sed -n 's/^\.\.\. \(fuzz_[A-Za-z0-9_]*\).*/\1/p' | grep -v '_autogen' | grep -v '_replay$' || true)
[ -n "$targets" ] || { echo "no fuzz targets found" >&2; exit 1; }

for target in $targets; do
    cmake --build "$build" --target "$target" -j"$jobs"
done

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
    echo "== $target for ${seconds}s (seeds: $seeds)"
    ASAN_OPTIONS=detect_leaks=0 "$binary" -max_total_time="$seconds" -rss_limit_mb=2048 \
        -artifact_prefix="$build/$target-" "$work" "$seeds"
done
