#!/bin/bash
# Builds the fuzz targets and runs each of them; fails on any finding.
# usage: fuzz/run.sh [seconds per target, default 60] [target ...]
# What a run learns is kept in build/fuzz/learned; findings lie in build/fuzz/findings, and
# build/fuzz/bin/TARGET_fuzzer FILE repeats one of them.
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
build=$top/build/fuzz
seconds=${1:-60}
shift || true
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
    targets=(reply list mlsd feat address pwd facts names convert profile localnames trust)
fi

cmake -S "$top" -B "$build" -G Ninja -DFUZZ=ON -DCMAKE_CXX_COMPILER="${FUZZ_CXX:-clang++-16}" \
    -DCMAKE_BUILD_TYPE=None >/dev/null
cmake --build "$build"

listings=$build/listings # the test listings as seeds, without their JSON files
mkdir -p "$listings" "$build/findings"
cp "$top"/tests/ftp/listings/*.txt "$listings"

failed=()
for target in "${targets[@]}"; do
    learned=$build/learned/$target
    mkdir -p "$learned"
    seeds=("$top/fuzz/corpus/$target")
    case $target in list | mlsd) seeds+=("$listings") ;; esac
    options=(-max_total_time="$seconds" -timeout=5 -rss_limit_mb=1024 -max_len=4096
        -artifact_prefix="$build/findings/$target-" -print_final_stats=1)
    if [ -f "$top/fuzz/$target.dict" ]; then
        options+=(-dict="$top/fuzz/$target.dict")
    fi
    log=$build/findings/$target.log
    if "$build/bin/${target}_fuzzer" "${options[@]}" "$learned" "${seeds[@]}" >"$log" 2>&1; then
        echo "$target: clean, $(sed -n 's/^stat::number_of_executed_units: *//p' "$log") inputs in $seconds s"
    else
        echo "$target: FINDING, see $log"
        tail -n 40 "$log"
        failed+=("$target")
    fi
done
[ ${#failed[@]} -eq 0 ]
