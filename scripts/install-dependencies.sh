#!/usr/bin/env bash
# Installs what is missing on a Debian 12 machine (amd64).
#
# usage: scripts/install-dependencies.sh [demo|test|fuzz|model|bench|peers]
#
# demo: what building and running the system needs. test (the default): that, and what the tests and
# the checks need. fuzz: that of demo, and what the fuzz targets need. model: what checking the models
# needs. bench: that of demo, and what the benchmarks need. peers: that of bench, and what the system
# is compared with. When nothing is missing, neither apt nor the network is touched.
. "$(dirname "$0")/common.sh"

readonly demo=(g++ g++-multilib cmake ninja-build ccache libasio-dev libcli11-dev libfmt-dev
  libmsgpack-cxx-dev librapidxml-dev libspdlog-dev nlohmann-json3-dev)
readonly test=("${demo[@]}" googletest binutils dpkg fish groff-base make mandoc pkgconf procps
  python3 systemd zsh clang-format clang-tidy)
readonly fuzz=("${demo[@]}" googletest clang libclang-rt-14-dev)
readonly model=(gcc spin)
readonly bench=("${demo[@]}" googletest python3)
readonly peers=("${bench[@]}" dbus-daemon libclass-loader-dev libpoco-dev libsystemd-dev libzmq3-dev
  pkgconf)

case "${1:-test}" in
  demo) wanted=("${demo[@]}") ;;
  test) wanted=("${test[@]}") ;;
  fuzz) wanted=("${fuzz[@]}") ;;
  model) wanted=("${model[@]}") ;;
  bench) wanted=("${bench[@]}") ;;
  peers) wanted=("${peers[@]}") ;;
  *) fail "usage: scripts/install-dependencies.sh [demo|test|fuzz|model|bench|peers]" ;;
esac

command -v dpkg-query >/dev/null && command -v apt-get >/dev/null ||
  fail "this needs Debian's packages; install by hand: ${wanted[*]}"

missing=()
for package in "${wanted[@]}"; do
  status=$(dpkg-query --show --showformat='${db:Status-Status}\n' "$package" 2>/dev/null || true)
  grep -qx installed <<<"$status" || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

as_root=(env)
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null ||
    fail "missing are ${missing[*]}; run as root, or install them by hand: there is no sudo here"
  as_root=(sudo env)
fi

log=$(mktemp)
trap 'rm -f "$log"' EXIT

# apt ARGUMENT...: quiet, asks nothing; shows what it said only when it fails.
apt() {
  "${as_root[@]}" DEBIAN_FRONTEND=noninteractive apt-get --yes --quiet \
    -o DPkg::Lock::Timeout=300 "$@" >"$log" 2>&1 </dev/null || {
    cat "$log" >&2
    fail "apt-get $1 failed; missing are ${missing[*]}"
  }
}

say "installing ${missing[*]}"
apt update
apt install --no-install-recommends "${missing[@]}"
