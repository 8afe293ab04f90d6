#!/usr/bin/env bash
# Builds the library and runs the command-line client on the default
# simulated target. Arguments are passed to the client (default: "info").
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-dependencies.sh

cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" --target vxt
if (($# == 0)); then set -- info; fi
exec build/release/Tools/vxt/vxt "$@"
