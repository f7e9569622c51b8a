#!/bin/sh
# Installs what ktclr needs on Debian 12: the build dependencies, and with
# --tests also what the test suite uses (GoogleTest and the ICC profiles of
# Debian's colour packages, GTK 3, Xvfb and xdotool for the dialog, clang for
# the fuzz targets).
# Runs apt only when something is missing.
set -eu
pkgs="build-essential cmake pkg-config binutils liblcms2-dev libtiff-dev libpng-dev zlib1g-dev libjpeg-dev libwebp-dev libcli11-dev"
if [ "${1:-}" = "--tests" ]; then
  pkgs="$pkgs libgtest-dev libbenchmark-dev icc-profiles-free colord-data argyll"
  # GTK 3, Xvfb and xdotool for the dialog tests.
  pkgs="$pkgs libgtk-3-dev xvfb xauth xdotool"
  # Independent readers and writers of image files for the storage and tool
  # tests; Little CMS's tificc for the tool's ICC conversions; python3 reads
  # the tool's JSON.
  pkgs="$pkgs libimage-exiftool-perl imagemagick libjpeg-turbo-progs libtiff-tools webp liblcms2-utils python3"
  # clang and its libFuzzer runtime for scripts/fuzz.sh.
  pkgs="$pkgs clang libclang-rt-14-dev"
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
