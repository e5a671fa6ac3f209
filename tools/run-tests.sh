#!/usr/bin/env bash
# Builds the project and runs the whole test suite: the Linux build's tests, then
# the Windows build's tests under Wine (tools/test-windows.sh). Both always run;
# the command fails if either fails.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
source "$root/tools/setup.sh"
status=0
ctest --test-dir "$build" --output-on-failure -j"$(nproc)" || status=1
bash "$root/tools/test-windows.sh" -j"$(nproc)" || status=1
exit "$status"
