#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# usage: scripts/fuzz.sh [SECONDS [extractor|sps]]
#
# Builds the preset fuzz and lets the fuzzer of the plug-in, or that of its check of AVC parameter sets,
# run for SECONDS (600). What it learns is kept in build/fuzz/corpus or sps_corpus; an input with which
# something is wrong lies in build/fuzz/findings, and the status is 1. Run `build/fuzz/bin/fuzz_replay
# FILE`, or sps_replay, to see it again.
set -euo pipefail

root=$(dirname "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")")
readonly seconds=${1:-600} subject=${2:-extractor}

[[ $seconds =~ ^[1-9][0-9]*$ ]] || { echo "fuzz: '$seconds' is no number of seconds" >&2 && exit 2; }
case $subject in
    extractor) corpus=corpus replay=fuzz_replay max_len=16384 ;;
    sps) corpus=sps_corpus replay=sps_replay max_len=256 ;;
    *) echo "fuzz: '$subject' is neither extractor nor sps" >&2 && exit 2 ;;
esac

cd "$root"
export PATH=$PATH:/usr/lib/llvm-14/bin # for the symbolizer
scripts/bootstrap.sh --clang
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz --target "${subject}_fuzzer" "$replay" -j "$(nproc)"
mkdir -p "build/fuzz/$corpus" build/fuzz/findings

# It ends early, with status 0, when too many inputs ended in assertions that are meant to be there.
SECONDS=0
while ((SECONDS < seconds)); do
    "build/fuzz/bin/${subject}_fuzzer" -max_total_time=$((seconds - SECONDS)) -max_len="$max_len" -len_control=0 \
        -timeout=10 -malloc_limit_mb=256 -rss_limit_mb=4096 -print_final_stats=1 \
        -artifact_prefix=build/fuzz/findings/ "build/fuzz/$corpus" "fuzz/$corpus" || exit 1
done
