# ensure_packages NAME...: installs the Debian packages that are missing, with
# apt-get (through sudo when not root). Sourced by the other scripts.
ensure_packages() {
  local missing=() package sudo=""
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed" || missing+=("$package")
  done
  ((${#missing[@]})) || return 0
  echo "installing ${missing[*]}"
  [ "$(id -u)" -eq 0 ] || sudo="sudo"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
}
