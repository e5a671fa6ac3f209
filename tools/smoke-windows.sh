#!/usr/bin/env bash
# Runs the Windows build's smoke program (tests/windows/smoke.c) under Wine, in a
# fresh Wine prefix of its own that is removed afterwards, with the emulator's
# vorn_lapack.dll on the DLL search path. Installs wine64 when missing.
# Usage: tools/smoke-windows.sh [BUILD_DIR]   (default: build-win beside the sources)
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=$(cd "${1:-$root/build-win}" && pwd)

source "$root/tools/packages.sh"
ensure_packages wine64

prefix=$(mktemp -d /tmp/vorn-wine.XXXXXX)
trap 'WINEPREFIX="$prefix" /usr/lib/wine/wineserver -k 2>/dev/null || true; rm -rf "$prefix"' EXIT
export WINEPREFIX=$prefix WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
# Wine sees the root file system as drive Z:.
export WINEPATH="Z:${build//\//\\}\\backends\\vorn-emulator"
/usr/lib/wine/wine64 wineboot --init >/dev/null 2>&1
VORN_VERBOSE=1 /usr/lib/wine/wine64 "$build/windows_smoke.exe"
