#!/bin/sh
# Regenerates the built-in profiles and grids; see README.md.
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
source_icc="$root/data/builtin/source/fogra39_colprof.icc"
if [ "${1:-}" != "--keep" ]; then
  cp /usr/share/color/icc/FOGRA39L.ti3 "$work/"
  (cd "$work" && colprof -v -qm -kr -D "ktclr press (FOGRA39)" \
    -C "Public domain data: FOGRA39L.ti3 (icc-profiles-free, Zlib)" -O fogra39.icc FOGRA39L >/dev/null)
  mkdir -p "$root/data/builtin/source"
  cp "$work/fogra39.icc" "$source_icc"
fi
c++ -O2 -std=c++20 -Wall -Wextra -o "$work/gen_builtin" "$root/tools/gen_builtin/gen_builtin.cpp" -llcms2
mkdir -p "$root/data/builtin"
"$work/gen_builtin" "$source_icc" "$root"
