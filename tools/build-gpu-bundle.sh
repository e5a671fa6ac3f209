#!/usr/bin/env bash
# Builds, on this machine (CUDA toolkit, no GPU needed), what tools/test-cuda.sh
# and tools/run-gpu-bench.sh run on the GPU machine, which has the CUDA toolkit
# but neither googletest nor OpenBLAS nor a network: a Release build in
# build-gpu/, and build-gpu/bundle.tar.gz holding the libraries, the test
# programs (googletest linked in), the benchmark, and OpenBLAS with its Fortran
# run-time libraries. Carry build-gpu/bundle.tar.gz to the GPU machine.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build="$root/build-gpu"
bundle="$build/bundle"

cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release -DVORN_BUILD_TESTS=ON -DVORN_BUILD_CUDA=ON >/dev/null
grep -q '^CUDAToolkit_BIN_DIR:' "$build/CMakeCache.txt" || { echo "no CUDA toolkit found" >&2; exit 1; }
cmake --build "$build" -j"$(nproc)" --target vorn_lapack_link lapackcpu lapackcpu_hooks vorn_cuda \
  cuda_library_tests link_routed_family_tests gpu_bench

# The build tree's layout, which the programs' $ORIGIN run paths expect.
rm -rf "$bundle"
mkdir -p "$bundle/tests" "$bundle/bench" "$bundle/backends/vorn-cuda" "$bundle/lib"
cp "$build/libvorn_lapack_link.so" "$build/liblapackcpu.so" "$build/liblapackcpu_hooks.so" "$bundle/"
cp "$build/backends/vorn-cuda/libvorn_lapack.so" "$bundle/backends/vorn-cuda/"
cp "$build/tests/cuda_library_tests" "$build/tests/link_routed_family_tests" "$bundle/tests/"
cp "$build/bench/gpu_bench" "$bundle/bench/"
strip --strip-debug "$bundle"/*.so "$bundle"/backends/vorn-cuda/*.so "$bundle"/tests/* "$bundle"/bench/*

# OpenBLAS and what it needs beyond the C library, found the way the loader finds them.
openblas=$(ldconfig -p | awk '/libopenblas\.so\.0 .*x86-64/ {print $NF; exit}')
[ -n "$openblas" ] || { echo "libopenblas.so.0 not found" >&2; exit 1; }
cp -L "$openblas" "$bundle/lib/libopenblas.so.0"
for dependency in libgfortran.so.5 libquadmath.so.0; do
  path=$(ldd "$openblas" | awk -v name="$dependency" '$1 == name {print $3}')
  [ -z "$path" ] || cp -L "$path" "$bundle/lib/"
done

tar -C "$build" -czf "$build/bundle.tar.gz" bundle
du -sh "$bundle" | sed 's/\t.*/ unpacked/'
du -h "$build/bundle.tar.gz" | sed 's/\t/ /'
