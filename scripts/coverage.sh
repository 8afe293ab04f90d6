#!/usr/bin/env bash
# Builds with line coverage, runs the whole suite and writes an HTML report
# of the library and the platform to build/coverage/report/index.html, with
# the totals on standard output.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-dependencies.sh

jobs=$(nproc)
cmake --preset coverage >/dev/null
cmake --build --preset coverage -j "$jobs"
find build/coverage -name '*.gcda' -delete
# A test that fails still counts what it ran; the report is made either way.
ctest --preset coverage -j "$jobs" || echo "coverage: some tests failed; the report covers what ran"
mkdir -p build/coverage/report
for part in Framework Platform; do
  echo "=== ${part}"
  gcovr --root . --object-directory build/coverage --filter "Source/${part}/" \
        --exclude-unreachable-branches --gcov-ignore-parse-errors \
        --html-details "build/coverage/report/${part}.html" --print-summary | tail -3
done
echo "report: build/coverage/report/Framework.html, build/coverage/report/Platform.html"
