#!/usr/bin/env bash
# Installs the build into a temporary prefix and builds a C program that calls
# dpotrf against it twice, with pkg-config and with find_package, runs both, and
# runs one through the installed vorn-run.
set -euo pipefail
build=$1 source=$(cd "$2" && pwd)
tmp=$(mktemp -d /tmp/vorn-install-test-XXXXXX)
trap 'rm -rf "$tmp"' EXIT
prefix=$tmp/prefix
cmake --install "$build" --prefix "$prefix" >/dev/null

libdir=$(dirname "$(find "$prefix" -name libvorn_lapack_link.so)")
PKG_CONFIG_PATH=$libdir/pkgconfig cc "$source/tests/install/dpotrf_check.c" \
  $(PKG_CONFIG_PATH=$libdir/pkgconfig pkg-config --cflags --libs vorn_lapack_link) -lm -o "$tmp/with_pkg_config"
"$tmp/with_pkg_config"

mkdir "$tmp/project"
cat >"$tmp/project/CMakeLists.txt" <<CMAKE
cmake_minimum_required(VERSION 3.25)
project(dpotrf_check C)
find_package(vorn_lapack_link REQUIRED)
add_executable(with_find_package $source/tests/install/dpotrf_check.c)
target_link_libraries(with_find_package PRIVATE vorn_lapack_link::vorn_lapack_link m)
CMAKE
cmake -S "$tmp/project" -B "$tmp/project/build" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$tmp/project/build" >/dev/null
"$tmp/project/build/with_find_package"

"$prefix/bin/vorn-run" --summary -- "$tmp/with_pkg_config" 2>"$tmp/summary"
grep -q '^dpotrf  *1  *0  *1  *1 ' "$tmp/summary" || { cat "$tmp/summary"; exit 1; }
