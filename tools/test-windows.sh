#!/usr/bin/env bash
# Builds the Windows tests (tests/CMakeLists.txt) with MinGW-w64 and runs them
# through ctest under Wine, in a fresh Wine prefix of its own that is removed
# afterwards. Installs what is missing. Exits with ctest's status.
# The build folder is build-win-tests beside the sources, or VORN_WINDOWS_TEST_BUILD_DIR.
# Arguments are passed on to ctest (for example -R crossover, -j4).
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build="${VORN_WINDOWS_TEST_BUILD_DIR:-$root/build-win-tests}"
# Every program, the tests and the prefix's own set-up, starts through wine-run.sh,
# which starts again what Wine itself could not start.
wine=$root/tools/wine-run.sh
wineserver=/usr/lib/wine/wineserver

source "$root/tools/packages.sh"
# googletest: its sources, which the Windows build compiles with MinGW-w64;
# liblapacke-dev and libblas-dev: the published prototypes the table tests read.
ensure_packages cmake g++ make g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64 googletest wine64 \
  liblapacke-dev libblas-dev

# The library, the emulator and the export check, as tools/build-windows.sh does
# them, with the tests on and Wine as the emulator that runs test programs.
cmake -S "$root" -B "$build" -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64.cmake" \
  -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVORN_BUILD_TESTS=ON -DCMAKE_CROSSCOMPILING_EMULATOR="$wine" >/dev/null
cmake --build "$build" -j"$(nproc)"
"$root/tools/check-windows-exports.sh" "$build"

prefix=$(mktemp -d /tmp/vorn-wine.XXXXXX)
cleanup() {
  WINEPREFIX="$prefix" "$wineserver" -k 2>/dev/null || true
  rm -rf "$prefix"
}
trap cleanup EXIT
export WINEPREFIX=$prefix WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
# A crash ends a test program through its own exception filter (crash_exit.cpp);
# no debugger is started in any case.
"$wine" wineboot --init >/dev/null 2>&1
"$wine" reg add 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\AeDebug' /v Debugger /t REG_SZ \
  /d 'no-debugger.exe' /f >/dev/null 2>&1
# One persistent server for the whole run, warmed up by one command: each test
# program then starts in a fraction of a second, and Wine's background processes
# do not hold ctest's output pipe open (the server started here, outside ctest,
# owns them).
"$wineserver" -k 2>/dev/null || true
"$wineserver" -p
"$wine" cmd /c exit 0 >/dev/null 2>&1

status=0
ctest --test-dir "$build" --output-on-failure "$@" || status=$?
exit "$status"
