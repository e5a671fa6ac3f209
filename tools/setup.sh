# Installs what the build needs on a fresh Debian 12 machine, when it is missing,
# and configures and builds the project. Sourced by run-demo.sh and run-tests.sh.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build="${VORN_BUILD_DIR:-$root/build}"

packages=(cmake g++ make libopenblas-dev libgtest-dev libgmock-dev)
missing=()
for package in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed" || missing+=("$package")
done
if ((${#missing[@]})); then
  echo "setup: installing ${missing[*]}"
  sudo=""
  [ "$(id -u)" -eq 0 ] || sudo="sudo"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j"$(nproc)"
