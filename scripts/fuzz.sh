#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# usage: scripts/fuzz.sh [MINUTES [TARGET...]]
#
# Builds the preset fuzz and lets each TARGET (all below fuzz/corpus when none is named) run for MINUTES
# (1), one after the other. What a target learns is kept in build/fuzz/corpus/TARGET. An input with
# which something is wrong lies in build/fuzz/findings/TARGET; run `build/fuzz/bin/TARGET_replay FILE`
# to see it again. AVI_FUZZ_BUDGETS=0 in the environment lets files cost what they like to open.
# Prints what each target executed and covered; exit status 1 when there is a finding.
set -euo pipefail

cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
readonly minutes=${1:-1}
targets=("${@:2}")

[[ $minutes =~ ^[1-9][0-9]*$ ]] || { echo "fuzz: '$minutes' is no number of minutes" >&2 && exit 2; }
((${#targets[@]} > 0)) || mapfile -t targets < <(cd fuzz/corpus && printf '%s\n' *)
for target in "${targets[@]}"; do
    [[ -d fuzz/corpus/$target ]] || { echo "fuzz: no target is called '$target'" >&2 && exit 2; }
done

# Options that depend on the target: inputs of a file are larger than a header, and a source that
# claims a size of its own makes the plug-in ask for memory that it never uses.
options_of() {
    case $1 in
        sps_fuzzer) echo -max_len=256 -malloc_limit_mb=256 ;;
        parser_fuzzer) echo -max_len=4096 -malloc_limit_mb=256 ;;
        source_fuzzer) echo -max_len=16384 -malloc_limit_mb=8192 ;;
        *) echo -max_len=16384 -malloc_limit_mb=256 ;;
    esac
}

# usage: run_target TARGET LOG. Fails at a finding. A run ends early, with status 0, when too many
# inputs ended in assertions that are meant to be there; the next one goes on from what it learned.
run_target() {
    local corpus=build/fuzz/corpus/$1 findings=build/fuzz/findings/$1 options
    read -ra options <<<"$(options_of "$1")"
    mkdir -p "$corpus" "$findings"
    SECONDS=0
    while ((SECONDS < 60 * minutes)); do
        "build/fuzz/bin/$1" -max_total_time=$((60 * minutes - SECONDS)) -len_control=0 -timeout=10 \
            -rss_limit_mb=2048 -print_final_stats=1 "${options[@]}" \
            "-artifact_prefix=$findings/" "$corpus" "fuzz/corpus/$1" >>"$2" 2>&1 || return 1
    done
}

# usage: show_result TARGET LOG RESULT
show_result() {
    local executions coverage
    executions=$(awk '/^stat::number_of_executed_units:/ { sum += $2 } END { print sum + 0 }' "$2")
    coverage=$(grep -ao 'cov: [0-9]*' "$2" | tail -n 1) || coverage="cov: 0"
    printf '%-18s %9d executions, %s edges covered, %s\n' "$1" "$executions" "${coverage#cov: }" "$3"
}

export PATH=$PATH:/usr/lib/llvm-14/bin # for the symbolizer
scripts/bootstrap.sh --clang
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j "$(nproc)" --target "${targets[@]}" "${targets[@]/%/_replay}"

failed=()
for target in "${targets[@]}"; do
    log=build/fuzz/$target.log
    : >"$log"
    if run_target "$target" "$log"; then
        show_result "$target" "$log" "no finding"
    else
        show_result "$target" "$log" "A FINDING"
        grep -aE '^(finding:|SUMMARY:|artifact_prefix)|CHECK|runtime error:' "$log" | tail -n 8
        failed+=("$target")
    fi
done
((${#failed[@]} == 0)) && exit 0
echo "fuzz: see build/fuzz/<target>.log of: ${failed[*]}" >&2
exit 1
