#!/bin/sh
# Makes a PNG with a profile (ImageMagick, exiftool) and runs a program that
# must load that profile: png_module.sh PROGRAM PROFILE
set -eu
program="$1"; profile="$2"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
convert -size 8x8 xc:red "$work/plain.png"
exiftool -q -q -o "$work/with.png" "-icc_profile<=$profile" "$work/plain.png"
"$program" "$work/with.png" "$profile"
