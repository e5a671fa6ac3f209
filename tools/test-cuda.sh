#!/usr/bin/env bash
# Runs on the GPU machine, from the bundle that tools/build-gpu-bundle.sh made
# (build-gpu/bundle.tar.gz, unpacked here when needed): the CUDA GPU library's own
# tests, then the routed family tests through the link library with the CUDA
# library in the emulator's place, results within LAPACK's error bounds of
# OpenBLAS's (the routines the CUDA library leaves to the CPU come back from it
# as "not available" and run on the CPU library). Each test runs in a process of
# its own, as ctest would run it (the build's ctest files name the folders of the
# machine that built it). About a minute. Exit status 0 when everything passed
# and the GPU tests ran: a test that skips itself for want of a GPU (vornInitialize
# failed) fails the run, since the family tests would then have run on the CPU.
#   VORN_CUDA_BUNDLE=FOLDER  a build tree to run instead of the bundle (here, without
#                            a GPU, it shows the check: every GPU test skips, the run fails)
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
bundle="${VORN_CUDA_BUNDLE:-$root/build-gpu/bundle}"
if [ ! -d "$bundle" ]; then
  [ -f "$root/build-gpu/bundle.tar.gz" ] || { echo "no build-gpu/bundle.tar.gz: run tools/build-gpu-bundle.sh first" >&2; exit 1; }
  tar -C "$root/build-gpu" -xzf "$root/build-gpu/bundle.tar.gz"
fi
command -v nvidia-smi >/dev/null && nvidia-smi -L
cuda_lib=$(dirname "$(readlink -f "$(command -v nvcc || echo /usr/local/cuda/bin/nvcc)")")/../lib64
export LD_LIBRARY_PATH="$bundle/backends/vorn-cuda:$bundle/lib:$cuda_lib${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}"

passed=0 failed=0 skipped=0 noGpu=0 failures=()
# run_each PROGRAM [ENV=VALUE...]: every test of a googletest program in its own process.
run_each() {
  local program=$1; shift
  local suite="" name output reason
  [ -x "$program" ] || { failed=$((failed + 1)); failures+=("$program: not built"); return; }
  while IFS= read -r line; do
    if [[ $line != " "* ]]; then suite=${line%% *}; continue; fi
    name=${line#  }; name=${name%% *}
    output=$(env "$@" "$program" --gtest_filter="$suite$name" 2>&1)
    if [ $? -ne 0 ]; then
      failed=$((failed + 1)); failures+=("$(basename "$program") $suite$name")
      echo "FAILED  $suite$name"; echo "$output" | grep -v '^\[' | head -40
    elif grep -q '\[  SKIPPED \]' <<<"$output"; then
      reason=$(grep -m1 -A1 'Skipped' <<<"$output" | tail -1)
      skipped=$((skipped + 1)); echo "skipped $suite$name: $reason"
      [[ $reason != "no GPU: "* ]] || noGpu=$((noGpu + 1))
    else
      passed=$((passed + 1)); echo "passed  $suite$name"
    fi
  done < <("$program" --gtest_list_tests | grep -v '^Running')
}

run_each "$bundle/tests/cuda_library_tests"
run_each "$bundle/tests/link_routed_family_tests" LINK_TEST_TOLERANCE=1

echo "passed $passed, failed $failed, skipped $skipped (of them $noGpu for want of a GPU)"
echo "(two skips are expected: RoutinesRefuseUntilStartedAndTouchNothing after its first half"
echo " (the start-up without a GPU), and the family test that needs the emulator's record)"
for f in "${failures[@]}"; do echo "FAILED: $f"; done
if [ "$noGpu" -gt 0 ] || [ "$passed" -eq 0 ]; then
  echo "FAILED: the GPU tests did not run: the CUDA library found no usable GPU (see the skip reasons above)"
  exit 1
fi
[ "$failed" -eq 0 ]
