#!/bin/sh
# Memory of the ktclr tool on one large image: a SIDE x SIDE RGB PNG (made
# row by row, never whole) to a CMYK TIFF on the built-in profiles, with the
# default bands and with bands of 64 rows. Prints seconds and the largest
# resident set, which follows the band and not the image.
#   bench/cli_large.sh [KTCLR] [SIDE]
# KTCLR: the built tool (build/bin/ktclr); SIDE: pixels a side (20000).
# Needs python3 and GNU time; takes about 3 x SIDE^2 + 4 x SIDE^2 bytes of
# disk for the input and output.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
tool=$(realpath "${1:-$root/build/bin/ktclr}")
side=${2:-20000}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
python3 - "$side" <<'EOF'
import struct, sys, zlib
side = int(sys.argv[1])
def chunk(f, kind, data):
    f.write(struct.pack(">I", len(data)) + kind + data)
    f.write(struct.pack(">I", zlib.crc32(kind + data)))
red = bytes(x * 255 // side for x in range(side))
ramp = bytes(i % 256 for i in range(side + 256))
with open("big.png", "wb") as f:
    f.write(b"\x89PNG\r\n\x1a\n")
    chunk(f, b"IHDR", struct.pack(">IIBBBBB", side, side, 8, 2, 0, 0, 0))
    z = zlib.compressobj(1)
    row = bytearray(3 * side)
    for y in range(side):
        row[0::3] = red
        row[1::3] = bytes([y * 255 // side]) * side
        row[2::3] = ramp[y % 256:y % 256 + side]
        data = z.compress(b"\0" + row)
        if data:
            chunk(f, b"IDAT", data)
    chunk(f, b"IDAT", z.flush())
    chunk(f, b"IEND", b"")
EOF
mpix=$(awk "BEGIN { print $side * $side / 1000000 }")
run() {  # label, convert arguments...
  label=$1
  shift
  /usr/bin/time -f "%e %M" -o t.txt "$tool" convert big.png --to cmyk -o big.tif "$@" > /dev/null
  read -r sec kb < t.txt
  printf '%-28s %7.2f s %8.1f Mpix/s %7d MB peak\n' "$label" "$sec" "$(awk "BEGIN { print $mpix / $sec }")" $((kb / 1024))
  rm -f big.tif
}
echo "one ${side}x${side} RGB PNG ($(du -m big.png | cut -f1) MB) to a CMYK TIFF ($((side * side * 4 / 1048576)) MB)"
run "default bands (about 4 MiB)"
run "bands of 64 rows" --band 64
