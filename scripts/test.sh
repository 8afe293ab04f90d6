#!/usr/bin/env bash
# Builds and runs every test: the developer build, the AddressSanitizer +
# UndefinedBehaviorSanitizer build, and the concurrency tests under
# ThreadSanitizer; a client built against the installed package, and the
# installed vxt run from a moved prefix.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-dependencies.sh

jobs=$(nproc)
# The optimizing build warns of things the others do not see; the command
# the README runs first is built here too, with warnings as errors.
echo "=== release: build vxt"
cmake --preset release -DVXT_WARNINGS_AS_ERRORS=ON >/dev/null
cmake --build --preset release -j "$jobs" --target vxt
for preset in dev asan tsan; do
  echo "=== ${preset}: build"
  # Sanitizer builds keep warnings as warnings: the instrumentation makes the
  # compiler see uninitialized reads inside the standard library's headers.
  werror=ON
  if [[ $preset != dev ]]; then werror=OFF; fi
  cmake --preset "$preset" -DVXT_WARNINGS_AS_ERRORS=$werror >/dev/null
  if [[ $preset == tsan ]]; then
    # Only the concurrency tests run under ThreadSanitizer.
    cmake --build --preset "$preset" -j "$jobs" --target concurrency_tests
  else
    cmake --build --preset "$preset" -j "$jobs"
  fi
  echo "=== ${preset}: test"
  ctest --preset "$preset" -j "$jobs"
  if [[ $preset == dev ]]; then
    echo "=== dev: install, build a client against the package, run the installed vxt from a moved prefix"
    rm -rf build/package
    cmake --install build/dev --prefix build/package/prefix >/dev/null
    cmake -S Tests/Package -B build/package/client -DCMAKE_PREFIX_PATH="$PWD/build/package/prefix" >/dev/null
    cmake --build build/package/client -j "$jobs"
    build/package/client/package_client
    Tests/Package/check-installed-vxt.sh build/package/prefix build/package
  fi
done
# The call-sequence fuzzer, for a minute, from its seeds: a failure stops
# the script with the input written to build/fuzz/findings/.
echo "=== fuzz: build the fuzzer, run it for 60 s"
# A fixed seed, so that a run explores what the last run on this tree did.
VXT_FUZZ_SEED=1 scripts/fuzz.sh 60
