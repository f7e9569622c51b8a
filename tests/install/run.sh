#!/bin/sh
# Installs the build into a staging prefix and builds a consumer against it
# twice: with find_package(ktclr) and with pkg-config.
set -eu
build="$1"; consumer="$2"; cmake="$3"; cc="$4"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$cmake" --install "$build" --prefix "$work/stage" >/dev/null
"$cmake" -S "$consumer" -B "$work/cmake-build" -DCMAKE_PREFIX_PATH="$work/stage" >/dev/null
"$cmake" --build "$work/cmake-build" >/dev/null
"$work/cmake-build/consumer"
pcdir=$(dirname "$(find "$work/stage" -name ktclr.pc | head -n 1)")
flags=$(PKG_CONFIG_PATH="$pcdir" pkg-config --cflags --libs ktclr)
# shellcheck disable=SC2086
"$cc" -std=c99 -Wall -Werror -o "$work/pc-consumer" "$consumer/consumer.c" $flags
LD_LIBRARY_PATH=$(dirname "$(find "$work/stage" -name 'libktclr.so' | head -n 1)") "$work/pc-consumer"
# The installed library finds its PNG codec module in the install tree.
here=$(cd "$(dirname "$0")" && pwd)
# shellcheck disable=SC2086
"$cc" -std=c99 -Wall -Werror -o "$work/png-consumer" "$here/../api/png_module_test.c" $flags
LD_LIBRARY_PATH=$(dirname "$(find "$work/stage" -name 'libktclr.so' | head -n 1)") \
  "$here/../api/png_module.sh" "$work/png-consumer" "$here/../../data/builtin/rgb_display.icc"
