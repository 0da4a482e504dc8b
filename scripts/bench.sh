#!/usr/bin/env bash
# Builds the benchmarks with other libraries beside ours and prints the medians of five runs. Arguments
# go to every program, for example --benchmark_filter=Merge.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

need_build_tools
need_packages libbenchmark-dev libcgal-dev liblapack-dev libnanoflann-dev libsisl-dev
build_preset bench
for program in "$root"/build/bench/benchmarks/*_benchmark; do
    say "$(basename "$program")"
    "$program" --benchmark_repetitions=5 --benchmark_report_aggregates_only=true \
        --benchmark_min_warmup_time=0.1 "$@" 2>/dev/null | grep -E '_median|^Benchmark' ||
        fail "$(basename "$program") failed"
done
