#!/usr/bin/env bash
# Builds the project with Google Benchmark and runs the benchmarks of bench/.
# Pin to one core for steadier figures: taskset -c 1 bash tools/run-bench.sh
source "$(dirname "${BASH_SOURCE[0]}")/packages.sh"
ensure_packages libbenchmark-dev
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
LD_LIBRARY_PATH="$build/backends/vorn-emulator${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}" \
  "$build/bench/call_cost_bench" --benchmark_repetitions=5 --benchmark_report_aggregates_only=true "$@"
