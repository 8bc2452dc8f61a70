# Shared by run, test and .ci/run: where the project lies, and what it needs of the system.

set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"

build_packages=(g++ cmake ninja-build libsqlite3-dev libcli11-dev nlohmann-json3-dev
  qt6-base-dev qt6-httpserver-dev qt6-websockets-dev)
test_packages=(libgtest-dev libbenchmark-dev sqlite3 chromium fonts-dejavu-core xvfb xdotool)

say() { printf '%s\n' "$*" >&2; }

as_root() {
  if [ "$(id -u)" -eq 0 ]; then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    say "Packages are missing and neither root nor sudo is at hand. As root, run: $*"
    exit 2
  fi
}

# Installs those of the named Debian packages that are missing; downloads nothing when none is.
need() {
  local missing=() package
  for package in "$@"; do
    dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return
  say "Installing ${missing[*]}"
  as_root apt-get update -qq >&2
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2
}

# Runs a step quietly; shows what it printed only when it fails.
quietly() {
  local log
  log=$(mktemp)
  if "$@" >"$log" 2>&1; then
    rm -f "$log"
  else
    local status=$?
    cat "$log" >&2
    rm -f "$log"
    return "$status"
  fi
}
