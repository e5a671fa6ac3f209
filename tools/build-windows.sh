#!/usr/bin/env bash
# Cross-builds vorn_lapack_link.dll and the emulator's vorn_lapack.dll for 64-bit
# Windows with MinGW-w64 on Debian 12, installing the compilers when missing, and
# checks the DLL's export and import tables.
# The build folder is build-win beside the sources, or VORN_WINDOWS_BUILD_DIR.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build="${VORN_WINDOWS_BUILD_DIR:-$root/build-win}"

source "$root/tools/packages.sh"
# g++ builds the export list generator, which runs on this machine during the build.
ensure_packages cmake g++ make g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64

cmake -S "$root" -B "$build" -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64.cmake" \
  -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j"$(nproc)"
"$root/tools/check-windows-exports.sh" "$build"
