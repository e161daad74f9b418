#!/usr/bin/env bash
# Builds and runs every test:
#   1. an optimised build, installed into a prefix, and a separate consumer
#      project built against that install with find_package(velcg);
#   2. the whole suite under ThreadSanitizer (the tests labelled "threads"
#      start threads of their own; the rest check that nothing else races);
#   3. the whole suite under AddressSanitizer and UndefinedBehaviorSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
jobs=$(nproc)

echo "== install and consumer check"
cmake --preset release >/dev/null
cmake --build --preset release -j "$jobs"
rm -rf build/install build/consumer
cmake --install build/release --prefix "$PWD/build/install" >/dev/null
cmake -S tests/consumer -B build/consumer -G Ninja -DCMAKE_PREFIX_PATH="$PWD/build/install" >/dev/null
cmake --build build/consumer -j "$jobs"
LD_LIBRARY_PATH="$PWD/build/install/lib:${LD_LIBRARY_PATH:-}" build/consumer/velcg_consumer

echo "== all tests under ThreadSanitizer"
cmake --preset tsan >/dev/null
cmake --build --preset tsan -j "$jobs"
ctest --preset tsan -j "$jobs"

echo "== all tests under AddressSanitizer and UndefinedBehaviorSanitizer"
cmake --preset asan >/dev/null
cmake --build --preset asan -j "$jobs"
ctest --preset asan -j "$jobs"
