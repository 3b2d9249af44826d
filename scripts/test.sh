#!/bin/sh
# All the tests: a release build (library, tests, tool, benchmarks) and a
# build with AddressSanitizer and UndefinedBehaviorSanitizer, each with its
# whole test suite.
set -eu
cd "$(dirname "$0")/.."
scripts/deps.sh test
start=$(date +%s)

cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build
(cd build && ctest --output-on-failure)

cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DLUMCV_SANITIZE=ON \
      -DLUMCV_BENCH=OFF -DLUMCV_TOOL=OFF >/dev/null
cmake --build build-asan
(cd build-asan && ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1 \
   ctest --output-on-failure)

echo "all tests passed in $(( $(date +%s) - start )) s"
