#!/usr/bin/env bash
# Sets up and builds everything, then runs the whole test suite twice: once on the normal
# build, once on a build under AddressSanitizer and UndefinedBehaviorSanitizer. Each run has
# a throwaway PostgreSQL server of its own for the PostgreSQL provider's tests.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh

jobs=$(nproc)
echo "== tests: build/"
scripts/with_postgres.sh ctest --test-dir build -j "$jobs" --output-on-failure

echo "== tests: build-sanitize/ (AddressSanitizer, UndefinedBehaviorSanitizer)"
cmake -S . -B build-sanitize -G Ninja -DCMAKE_BUILD_TYPE=Debug -DTIDEWELL_SANITIZE=ON \
  -DTIDEWELL_BENCHMARKS=OFF >/dev/null
ninja -C build-sanitize
ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1 \
  scripts/with_postgres.sh ctest --test-dir build-sanitize -j "$jobs" --output-on-failure
