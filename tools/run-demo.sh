#!/usr/bin/env bash
# Builds what the demo needs (the link library, the CPU library, the emulator and
# the demo application) and runs the demo: an application linked only against the
# link library factors one matrix below spotrf's crossover and one above it, with
# the log on. Without a GPU, the emulator stands in for the GPU library.
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh" spotrf_demo
echo
echo "demo: running $build/demo/spotrf_demo with VORN_VERBOSE=1"
VORN_VERBOSE=1 LD_LIBRARY_PATH="$build/backends/vorn-emulator${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}" \
  "$build/demo/spotrf_demo"
