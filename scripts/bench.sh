#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# usage: scripts/bench.sh [REPETITIONS]
#
# Measures what opening, reading and seeking take beside other demuxers, and writes the tables of
# docs/performance.md. Each work is done REPETITIONS times (9 unless given), in no order. Builds the
# preset release, installs the Debian packages that this needs, takes some 3 GB of disk meanwhile. What
# was measured stays in build/bench.
set -euo pipefail

cd "$(dirname "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")")"
readonly repetitions=${1:-9} library=build/release/lib/libaviextractor.so out=build/bench

scripts/bootstrap.sh --bench
cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" --target bench
mkdir -p "$out"
folder=$(mktemp -d "$out/files-XXXXXX")
trap 'rm -rf "$folder"' EXIT

# What the loader has to do before the plug-in's first function runs.
describe_start() {
    local relocations bytes
    relocations=$(readelf -rW "$library" | awk '$3 ~ /^R_/ { print $3 }' | sort | uniq -c |
        awk '{ print $1, $2 }' | paste -sd ',' | sed 's/,/, /g')
    bytes=$(readelf -SW "$library" | sed -nE 's,.* \.init_array .* 0*([0-9a-f]+) 08 .*,\1,p')
    echo "Relocations: $relocations; entries of .init_array: $((16#${bytes:-0} / 8))."
}

build/release/bin/bench_compare "$folder" \
    --benchmark_repetitions="$repetitions" --benchmark_enable_random_interleaving=true \
    --benchmark_out="$out/results.json" --benchmark_out_format=json
for work in "idx1 1000000" "opendml 506000" "tiny 1000000"; do
    # shellcheck disable=SC2086 # a shape and a number, two arguments
    echo "$work $(build/release/bin/bench_memory $work "$folder")"
done >"$out/memory.txt"
describe_start >"$out/start.txt"
python3 -B scripts/bench/table.py "$out"/{results.json,memory.txt,start.txt} docs/performance.md
