#!/usr/bin/env bash
# Builds the call-sequence fuzzer (clang, libFuzzer, ASan + UBSan) and runs
# it for SECONDS (default 60) against the default target, from the seed
# corpus with the dictionary. A failing input is written to
# build/fuzz/findings/; keep it in Tests/Fuzz/regressions/ once fixed.
# VXT_FUZZ_SEED fixes libFuzzer's seed (0, the default, picks one).
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j "$(nproc)"
work=build/fuzz/run
rm -rf "$work"
mkdir -p "$work/corpus" "$work/seeds" build/fuzz/findings
build/fuzz/Tests/Fuzz/vxt_fuzz_seeds "$work/seeds" "$work/vxt.dict"
cp Tests/Fuzz/regressions/* "$work/seeds/" 2>/dev/null || true
# One process, inputs of at most a few calls' worth of bytes, 30 s per input
# at most (a call has 20 s before the decoder calls it a hang).
ASAN_OPTIONS=intercept_tls_get_addr=0:detect_leaks=0 \
  build/fuzz/Tests/Fuzz/vxt_fuzzer "$work/corpus" "$work/seeds" -dict="$work/vxt.dict" \
  -max_total_time="$seconds" -max_len=512 -timeout=30 -rss_limit_mb=4096 -seed="${VXT_FUZZ_SEED:-0}" \
  -artifact_prefix=build/fuzz/findings/ -print_final_stats=1
