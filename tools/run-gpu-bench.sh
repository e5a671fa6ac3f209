#!/usr/bin/env bash
# Runs on the GPU machine, from the bundle of tools/build-gpu-bundle.sh: the GPU
# benchmark of bench/gpu_bench.cpp (link library over the CUDA library, OpenBLAS
# on all cores, cuBLAS/cuSOLVER on device data, NVBLAS for dgemm), then its
# tables and break-even sizes. Fits one device command: about 6 minutes, capped
# by the budgets below (the benchmark skips what would pass them and says so).
# Every result is checked; a GPU call that the link library retried on the CPU is
# recorded with no time (its error lines: OUTPUT_FOLDER/gpu_bench.csv.link.log).
# Without a GPU the benchmark says so and the script ends there, successfully.
#   tools/run-gpu-bench.sh [OUTPUT_FOLDER]     default: $OUT when set, else build-gpu/bench-results
# VORN_CUDA_TRANSFER=staged|registered|pageable chooses the CUDA library's host
# transfer mode for the run (default: the library's own default).
# GPU_BENCH_ROUTINES=dsyev,dgesvd,dgesdd times only the routines named (the
# decompositions at n = 2048 ... 8192 need most of a device command of their own).
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
bundle="$root/build-gpu/bundle"
out="${1:-${OUT:-$root/build-gpu/bench-results}}"
mkdir -p "$out"
if [ ! -d "$bundle" ]; then
  [ -f "$root/build-gpu/bundle.tar.gz" ] || { echo "no build-gpu/bundle.tar.gz: run tools/build-gpu-bundle.sh first" >&2; exit 1; }
  tar -C "$root/build-gpu" -xzf "$root/build-gpu/bundle.tar.gz"
fi
cuda_lib=$(dirname "$(readlink -f "$(command -v nvcc || echo /usr/local/cuda/bin/nvcc)")")/../lib64
export LD_LIBRARY_PATH="$bundle/backends/vorn-cuda:$bundle/lib:$cuda_lib${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}"
{ nvidia-smi -L || true; nproc; grep -m1 'model name' /proc/cpuinfo || true; echo "VORN_CUDA_TRANSFER=${VORN_CUDA_TRANSFER:-default}"; } \
  > "$out/machine.txt" 2>&1
bench="$bundle/bench/gpu_bench"

# Every routed call to the GPU, whatever its size.
VORN_GPU_ALWAYS=1 "$bench" run "$bundle/libvorn_lapack_link.so" "$out/gpu_bench.csv" 405
[ -s "$out/gpu_bench.csv" ] || exit 0

# NVBLAS, preloaded, with OpenBLAS behind it for what it leaves to the CPU.
cat > "$out/nvblas.conf" <<CONF
NVBLAS_LOGFILE $out/nvblas.log
NVBLAS_CPU_BLAS_LIB $bundle/lib/libopenblas.so.0
NVBLAS_GPU_LIST ALL
CONF
NVBLAS_CONFIG_FILE="$out/nvblas.conf" LD_PRELOAD="$cuda_lib/libnvblas.so" \
  "$bench" nvblas "$out/nvblas.csv" 60 || echo "NVBLAS run failed" >&2

"$bench" report "$out"/*.csv > "$out/results.md"
cat "$out/results.md"
