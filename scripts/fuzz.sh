#!/bin/sh
# Builds the libFuzzer targets with clang in build-fuzz and runs each, one
# after the other, for SECONDS (default 20).
#   scripts/fuzz.sh [SECONDS [TARGET...]]   targets: fuzz/*.cpp without .cpp
# Inputs that add coverage collect in build-fuzz/corpus/<target> (the seeds in
# fuzz/corpus are only read); crashes and failed properties are written to
# build-fuzz/findings/<target>-* and make the script fail.
set -eu
cd "$(dirname "$0")/.."
seconds=${1:-20}
[ $# -gt 0 ] && shift
targets=${*:-profile_bytes tag_element grid_file image_file convert}
CC=clang CXX=clang++ cmake -S . -B build-fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKTCLR_BUILD_FUZZ=ON \
  -DKTCLR_BUILD_TESTS=OFF -DKTCLR_BUILD_EXAMPLES=OFF -DKTCLR_BUILD_TOOL=OFF -DKTCLR_BUILD_DIALOG=OFF >/dev/null
# shellcheck disable=SC2046
cmake --build build-fuzz -j"${JOBS:-$(nproc)}" --target $(printf 'fuzz_%s ' $targets)
mkdir -p build-fuzz/findings
failed=""
# The targets write each input to a scratch file: memory-backed when possible.
scratch=$(mktemp -d "$( [ -w /dev/shm ] && echo /dev/shm || echo "${TMPDIR:-/tmp}")/ktclr-fuzz.XXXXXX")
trap 'rm -rf "$scratch"' EXIT
for t in $targets; do
  case $t in
    profile_bytes) seeds=profile dict=icc ;;
    tag_element) seeds=$t dict=icc ;;
    grid_file) seeds=$t dict=grid ;;
    image_file) seeds=$t dict=image ;;
    *) seeds=$t dict= ;;
  esac
  mkdir -p "build-fuzz/corpus/$t"
  echo "== $t: $seconds s"
  TMPDIR=$scratch UBSAN_OPTIONS=print_stacktrace=1 "build-fuzz/fuzz_$t" -max_total_time="$seconds" \
    -timeout=10 -rss_limit_mb=2048 -malloc_limit_mb=512 -print_final_stats=1 ${dict:+-dict=fuzz/dict/$dict.dict} \
    -artifact_prefix="build-fuzz/findings/$t-" "build-fuzz/corpus/$t" "fuzz/corpus/$seeds" || failed="$failed $t"
done
[ -z "$failed" ] || { echo "fuzz findings in:$failed (build-fuzz/findings)"; exit 1; }
