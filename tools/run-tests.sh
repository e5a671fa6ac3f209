#!/usr/bin/env bash
# Builds the project and runs the whole test suite: the Linux build's tests; the
# same suite built with AddressSanitizer and UndefinedBehaviorSanitizer (without
# the reference LAPACK runs) in build-asan; the tests that use threads built with
# ThreadSanitizer in build-tsan; then the Windows build's tests under Wine
# (tools/test-windows.sh). The instrumented builds lie beside the plain one
# (VORN_ASAN_BUILD_DIR and VORN_TSAN_BUILD_DIR name others). Every part always
# runs; the command fails if any fails.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
source "$root/tools/setup.sh"
status=0
ctest --test-dir "$build" --output-on-failure -j"$(nproc)" || status=1

# Any sanitizer report ends the test that made it, and so fails it.
export ASAN_OPTIONS=halt_on_error=1:detect_leaks=1 UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
export TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1:suppressions=$root/tests/support/thread_sanitizer_suppressions.txt
# The sanitizer runtimes intercept dlopen, and the loader then searches the
# runtime's own paths instead of the calling library's RUNPATH: LD_LIBRARY_PATH
# names the folder where the link library and the emulator find the CPU library.
sanitized() {  # <folder> <sanitizers> <target> [ctest arguments...]
  local folder=$1 sanitizers=$2 target=$3
  shift 3
  cmake -S "$root" -B "$folder" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVORN_SANITIZE="$sanitizers" >/dev/null &&
    cmake --build "$folder" -j"$(nproc)" --target "$target" &&
    LD_LIBRARY_PATH="$folder${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}" \
      ctest --test-dir "$folder" --output-on-failure -j"$(nproc)" "$@"
}
parent=$(dirname "$build")
sanitized "${VORN_ASAN_BUILD_DIR:-$parent/build-asan}" address,undefined all || status=1
# A child forked from a process whose threads ThreadSanitizer tracks hangs in the
# sanitizer's runtime: the fork test runs in the other two builds only.
sanitized "${VORN_TSAN_BUILD_DIR:-$parent/build-tsan}" thread thread_tests -L threads -E AForkedChild || status=1

bash "$root/tools/test-windows.sh" -j"$(nproc)" || status=1
exit "$status"
