#!/bin/sh
# The ktclr tool on a batch of large RGB TIFFs to CMYK on the built-in
# profiles: one file at a time, all cores, and Little CMS's tificc with the
# same profiles (one after another, and as many at once as there are
# cores). Prints seconds, megapixels a second and the largest resident set.
#   bench/cli_batch.sh [KTCLR] [FILES] [SIDE]
# KTCLR: the built tool (build/bin/ktclr); FILES: images (8); SIDE: pixels
# a side (4096). Needs ImageMagick, tificc (liblcms2-utils), GNU time.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
tool=$(realpath "${1:-$root/build/bin/ktclr}")
files=${2:-8}
side=${3:-4096}
cores=$(nproc)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
"$tool" profile builtin rgb rgb.icc
"$tool" profile builtin cmyk cmyk.icc
# Plain RGB without chromaticity tags (tificc would build a profile from
# them instead of taking -i).
convert "$root/data/chart.png" -filter point -resize "${side}x${side}!" big.png
"$tool" convert big.png --to rgb -o big.tif
i=0
while [ "$i" -lt "$files" ]; do cp big.tif "in$i.tif"; i=$((i + 1)); done
rm big.tif big.png
mpix=$(awk "BEGIN { print $files * $side * $side / 1000000 }")

run() {  # label, command...
  label=$1
  shift
  rm -rf out && mkdir out
  /usr/bin/time -f "%e %M" -o t.txt "$@" > /dev/null 2>&1
  read -r sec kb < t.txt
  printf '%-34s %7.2f s %8.1f Mpix/s %7d MB peak\n' "$label" "$sec" "$(awk "BEGIN { print $mpix / $sec }")" $((kb / 1024))
}

echo "$files RGB TIFFs of ${side}x${side} to CMYK, built-in profiles, $cores cores"
run "ktclr convert -j 1" "$tool" convert in*.tif --to cmyk -d out -j 1
run "ktclr convert -j $cores" "$tool" convert in*.tif --to cmyk -d out -j "$cores"
run "tificc, one after another" sh -c 'for f in in*.tif; do tificc -i rgb.icc -o cmyk.icc "$f" "out/$f"; done'
run "tificc, $cores at once" sh -c "ls in*.tif | xargs -P $cores -I{} tificc -i rgb.icc -o cmyk.icc {} out/{}"
