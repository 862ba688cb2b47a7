#!/bin/sh
# The crash-consistency tests with many more kills than `make test` runs: every write killed
# with SIGKILL KILLS times per kind (default 2000). Prints kills, kills inside a write and stray
# temporaries per kind; any torn or mixed file fails the run.
# Usage: tools/faults/crash-campaign.sh [kills per kind]
set -eu
kills=${1:-2000}
root=$(cd "$(dirname "$0")/../.." && pwd)
build="$root/build/test"
[ -d "$build" ] || cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Debug -DTRENDAX_SANITIZE=ON
cmake --build "$build" --target faults_tests -j"${JOBS:-2}" >/dev/null
binary=$(find "$build/tests" -type f -name faults_tests -perm -u+x | head -n 1)
start=$(date +%s)
TRENDAX_CRASH_KILLS=$kills ASAN_OPTIONS=detect_leaks=0 "$binary" \
    --gtest_filter='CrashConsistency.*' --gtest_brief=1
echo "$kills kills per kind in $(($(date +%s) - start)) s"
