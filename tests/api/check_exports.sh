#!/bin/sh
# Fails when the shared library exports anything but the Vx_ functions (and
# SetResModule), or lacks its versioned SONAME.
set -eu
lib="$1"
major="$2"
symbols=$(nm -D --defined-only "$lib" | awk '{print $3}' | sed 's/@.*//' | sort -u)
stray=$(printf '%s\n' "$symbols" | grep -v -E '^(Vx_[A-Za-z0-9_]+|SetResModule)$' | grep -v '^$' || true)
if [ -n "$stray" ]; then
  echo "unexpected exported symbols:"; printf '%s\n' "$stray"; exit 1
fi
for need in Vx_ClrInit Vx_ClrFree Vx_ClrIsValid Vx_ClrSetConversionParams Vx_ClrGetEmbeddedProfile Vx_ClrConvert Vx_ClrConvertDirect; do
  printf '%s\n' "$symbols" | grep -qx "$need" || { echo "missing export: $need"; exit 1; }
done
soname=$(objdump -p "$lib" | awk '/SONAME/ {print $2}')
[ "$soname" = "libktclr.so.$major" ] || { echo "SONAME is '$soname'"; exit 1; }
echo "$(printf '%s\n' "$symbols" | wc -l) exported symbols, SONAME $soname"
