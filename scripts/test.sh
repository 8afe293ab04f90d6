#!/usr/bin/env bash
# Builds and runs every test: the developer build, the AddressSanitizer +
# UndefinedBehaviorSanitizer build, and the concurrency tests under
# ThreadSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-dependencies.sh

jobs=$(nproc)
for preset in dev asan tsan; do
  echo "=== ${preset}: build"
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset" -j "$jobs"
  echo "=== ${preset}: test"
  ctest --preset "$preset" -j "$jobs"
done
