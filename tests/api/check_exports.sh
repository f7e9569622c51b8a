#!/bin/sh
# Fails when the shared library exports anything but the Vx_ functions (and
# SetResModule), when a function the public headers declare is not exported,
# when a declaration or a status is undocumented, or when the library lacks
# its versioned SONAME. A KTCLR_API declaration counts as documented when
# the line right above its first line ends a comment ("*/"); a status when
# its line in status.h carries a comment.
set -eu
lib="$1"
major="$2"
include="$3"
symbols=$(nm -D --defined-only "$lib" | awk '{print $3}' | sed 's/@.*//' | sort -u)
stray=$(printf '%s\n' "$symbols" | grep -v -E '^(Vx_[A-Za-z0-9_]+|SetResModule)$' | grep -v '^$' || true)
if [ -n "$stray" ]; then
  echo "unexpected exported symbols:"; printf '%s\n' "$stray"; exit 1
fi
# Every function declared with KTCLR_API in the public headers.
declared=$(cat "$include"/ktclr/*.h | grep -v "^ *#" | tr '\n' ' ' | grep -o 'KTCLR_API [^(;]*(' |
  sed 's/($//; s/.*[ *]//' | sort -u)
[ -n "$declared" ] || { echo "no declarations found under $include"; exit 1; }
for need in $declared; do
  printf '%s\n' "$symbols" | grep -qx "$need" || { echo "declared but not exported: $need"; exit 1; }
done
undocumented=$(awk 'FNR == 1 { prev = "" }
  /^[[:space:]]*KTCLR_API[[:space:]]/ && prev !~ /\*\/[[:space:]]*$/ { print FILENAME ":" FNR ": " $0 }
  { prev = $0 }' "$include"/ktclr/*.h)
if [ -n "$undocumented" ]; then
  echo "declarations without a comment right above them:"; printf '%s\n' "$undocumented"; exit 1
fi
bare=$(grep -n -E '^[[:space:]]*(STATUS|ERR|WARN)_[A-Z0-9_]+ = ' "$include"/ktclr/status.h | grep -v '/\*' || true)
if [ -n "$bare" ]; then
  echo "statuses without a comment:"; printf '%s\n' "$bare"; exit 1
fi
soname=$(objdump -p "$lib" | awk '/SONAME/ {print $2}')
[ "$soname" = "libktclr.so.$major" ] || { echo "SONAME is '$soname'"; exit 1; }
echo "$(printf '%s\n' "$declared" | wc -l) declared, $(printf '%s\n' "$symbols" | wc -l) exported, SONAME $soname"
