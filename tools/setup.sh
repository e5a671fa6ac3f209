# Installs what the build needs on a fresh Debian 12 machine, when it is missing,
# and configures and builds the project. Sourced by run-demo.sh and run-tests.sh.
# The targets to build are the arguments the sourcing script passes (the demo
# names the one it runs, which depends on all it needs); with none, everything.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build="${VORN_BUILD_DIR:-$root/build}"

source "$root/tools/packages.sh"
ensure_packages cmake g++ make pkgconf libopenblas-dev libgtest-dev libgmock-dev liblapacke-dev libblas-dev liblapack-test gnuplot-nox

cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
if (($#)); then
  cmake --build "$build" -j"$(nproc)" --target "$@"
else
  cmake --build "$build" -j"$(nproc)"
fi
