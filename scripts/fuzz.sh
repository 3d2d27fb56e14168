#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# usage: scripts/fuzz.sh [SECONDS]
#
# Builds the preset fuzz and lets the fuzzer of the plug-in run for SECONDS (600). What it learns is
# kept in build/fuzz/corpus; an input with which something is wrong lies in build/fuzz/findings, and
# the status is 1. Run `build/fuzz/bin/fuzz_replay FILE` to see it again.
set -euo pipefail

root=$(dirname "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")")
readonly seconds=${1:-600}

[[ $seconds =~ ^[1-9][0-9]*$ ]] || { echo "fuzz: '$seconds' is no number of seconds" >&2 && exit 2; }

cd "$root"
export PATH=$PATH:/usr/lib/llvm-14/bin # for the symbolizer
scripts/bootstrap.sh --clang
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz --target extractor_fuzzer fuzz_replay -j "$(nproc)"
mkdir -p build/fuzz/corpus build/fuzz/findings

# It ends early, with status 0, when too many inputs ended in assertions that are meant to be there.
SECONDS=0
while ((SECONDS < seconds)); do
    build/fuzz/bin/extractor_fuzzer -max_total_time=$((seconds - SECONDS)) -max_len=16384 -len_control=0 \
        -timeout=10 -malloc_limit_mb=256 -rss_limit_mb=4096 -print_final_stats=1 \
        -artifact_prefix=build/fuzz/findings/ build/fuzz/corpus fuzz/corpus || exit 1
done
