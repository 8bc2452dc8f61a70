# Shared by run, test and .ci/run: where the project lies, what it needs of the system, and how it is built.

set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"

build_packages=(g++ cmake libasound2-dev libevdev-dev ninja-build libsqlite3-dev libcli11-dev nlohmann-json3-dev
  libtomlplusplus-dev libpugixml-dev libyaml-cpp-dev libmosquitto-dev libssl-dev pkg-config ca-certificates
  qt6-base-dev qt6-httpserver-dev qt6-websockets-dev)
test_packages=(libgtest-dev mosquitto openssl python3-cram sqlite3 chromium fonts-dejavu-core xvfb xdotool)
# A machine for the check on real drivers.
machine_packages=(qemu-system-x86 busybox-static cpio kmod xz-utils linux-headers-amd64 v4l-utils)
bench_packages=(libgtest-dev libbenchmark-dev)

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
  say "Installing packages: ${missing[*]}"
  as_root apt-get update -qq >&2
  quietly as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

# Runs a step quietly; shows what it printed only when it fails.
quietly() {
  local log status=0
  log=$(mktemp)
  "$@" >"$log" 2>&1 || status=$?
  [ "$status" -eq 0 ] || cat "$log" >&2
  rm -f "$log"
  return "$status"
}

# configure PRESET [OPTION...]
configure() {
  say "Configuring build/$1"
  quietly cmake --preset "$@"
}

# Turns the lines "[n/m] step" of ninja into one line that is rewritten on a terminal, else a line a tenth.
progress() {
  local terminal=0
  [ -t 2 ] && terminal=1
  awk -v terminal="$terminal" '
    match($0, /^\[[0-9]+\/[0-9]+\] /) {
      split(substr($0, 2, RLENGTH - 3), count, "/")
      tenth = int(10 * count[1] / count[2])
      if (terminal) printf "\r\033[K%s of %s", count[1], count[2]
      else if (tenth > told) print "  " count[1] " of " count[2]
      told = tenth
      fflush()
    }
    END { if (terminal && told != "") printf "\r\033[K" }' >&2
}

# building PRESET [TARGET]: builds, and tells how far it is; the whole log when it fails.
building() {
  local preset=$1 log started=$SECONDS
  log=$(mktemp)
  say "Building ${2:-everything} in build/$preset"
  if ! NINJA_STATUS='[%f/%t] ' cmake --build --preset "$preset" ${2:+--target "$2"} -j "$(nproc)" 2>&1 |
    tee "$log" | progress; then
    cat "$log" >&2
    say "The build failed; what it printed stands above."
    rm -f "$log"
    return 1
  fi
  rm -f "$log"
  local took=$((SECONDS - started))
  say "Built in $((took / 60)) min $((took % 60)) s"
}
