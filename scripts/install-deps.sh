#!/bin/sh
# Installs what ktclr needs on Debian 12: the build dependencies, and with
# --tests also what the test suite uses (GoogleTest and the ICC profiles of
# Debian's colour packages). Runs apt only when something is missing.
set -eu
pkgs="build-essential cmake pkg-config binutils liblcms2-dev libtiff-dev libpng-dev libjpeg-dev"
if [ "${1:-}" = "--tests" ]; then
  pkgs="$pkgs libgtest-dev libbenchmark-dev icc-profiles-free colord-data argyll"
fi
missing=""
for p in $pkgs; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing="$missing $p"
done
[ -z "$missing" ] && exit 0
if [ "$(id -u)" = 0 ]; then sudo=""; else sudo="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -q
# shellcheck disable=SC2086
$sudo apt-get install -y -q --no-install-recommends $missing
