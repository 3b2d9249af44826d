#!/bin/sh
# Installs the Debian packages that a job needs, when any is missing.
# Usage: scripts/deps.sh build|test
set -eu
pkgs="cmake g++ ninja-build binutils libgtest-dev libbenchmark-dev libstb-dev"
if [ "${1:-build}" = test ]; then
  # OpenCV is a peer of the tests and benchmarks only.
  pkgs="$pkgs libopencv-dev libopencv-contrib-dev"
fi
missing=""
for p in $pkgs; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing="$missing $p"
done
[ -z "$missing" ] && exit 0
echo "installing:$missing"
if [ "$(id -u)" -ne 0 ]; then SUDO=sudo; else SUDO=; fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends $missing
