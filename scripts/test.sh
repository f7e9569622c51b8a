#!/bin/sh
# Installs what the tests need, then builds and runs the whole suite twice,
# once plainly and once under AddressSanitizer and UndefinedBehaviorSanitizer,
# runs the thread-safety stress tests (label "threads") a third time under
# ThreadSanitizer, then every fuzz target briefly.
set -eu
cd "$(dirname "$0")/.."
scripts/install-deps.sh --tests
jobs=$(nproc)
cmake -S . -B build -DCMAKE_BUILD_TYPE=Release -DKTCLR_BUILD_TESTS=ON
cmake --build build -j"$jobs"
ctest --test-dir build -j"$jobs" --output-on-failure --no-tests=error
cmake -S . -B build-asan -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKTCLR_SANITIZE=ON -DKTCLR_BUILD_TESTS=ON -DKTCLR_BUILD_EXAMPLES=OFF
cmake --build build-asan -j"$jobs"
ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1 \
  ctest --test-dir build-asan -j"$jobs" --output-on-failure --no-tests=error
cmake -S . -B build-tsan -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKTCLR_TSAN=ON -DKTCLR_BUILD_TESTS=ON -DKTCLR_BUILD_EXAMPLES=OFF
cmake --build build-tsan -j"$jobs" --target ktclr_thread_tests
TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1 \
  ctest --test-dir build-tsan -L threads -j"$jobs" --output-on-failure --no-tests=error
# Every fuzz target for 20 seconds, built with clang in build-fuzz.
scripts/fuzz.sh 20
