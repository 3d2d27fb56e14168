#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# usage: scripts/test.sh [PRESET...]
#
# Configures, builds and tests the presets of CMakePresets.json that are named: `release` when none
# is, and with `all` each but `coverage`. Installs the Debian packages that those presets need.
# Every preset's ctest summary is shown again at the end; the exit status shows whether all passed.
set -euo pipefail

root=$(dirname "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")")
readonly all_presets=(release debug asan intsan tsan fuzz aarch64)

# Prints bootstrap's option for a preset, if it needs one.
packages_of() {
    case $1 in
        release | coverage) ;;
        debug | asan | intsan | tsan | fuzz) echo --clang ;;
        aarch64) echo --cross ;;
        *) echo "test: no preset is called '$1'" >&2 && return 2 ;;
    esac
}

test_preset() {
    local preset=$1 log=$root/build/$1-ctest.log
    echo "=== $preset"
    cmake --preset "$preset" >"$root/build/$preset-configure.log" 2>&1 ||
        { cat "$root/build/$preset-configure.log" && return 1; }
    cmake --build --preset "$preset" -j "$(nproc)" || return 1
    ctest --preset "$preset" --no-tests=error -j "$(nproc)" 2>&1 | tee "$log"
}

# From "100% tests passed" on: what ctest says of the whole run.
show_summary() {
    local log=$root/build/$1-ctest.log
    echo "=== $1 ($2 s)"
    if [[ ! -e $log ]]; then
        echo "not built"
    elif ! grep -q 'tests passed,' "$log"; then
        tail -n 3 "$log"
    else
        sed -n '/tests passed,/,$p' "$log"
    fi
}

main() {
    local presets=() options=() seconds=() failed=() preset option index
    for preset in "${@:-release}"; do
        if [[ $preset == all ]]; then presets+=("${all_presets[@]}"); else presets+=("$preset"); fi
    done
    for preset in "${presets[@]}"; do
        option=$(packages_of "$preset") || return
        options+=(${option:+"$option"})
    done
    "$root/scripts/bootstrap.sh" "${options[@]}"

    cd "$root"
    mkdir -p build
    export PATH=$PATH:/usr/lib/llvm-14/bin  # for the symbolizer
    ulimit -c 0                             # death tests and qemu would leave core files
    for preset in "${presets[@]}"; do
        rm -f "build/$preset-ctest.log"
        SECONDS=0
        test_preset "$preset" || failed+=("$preset")
        seconds+=("$SECONDS")
    done

    for index in "${!presets[@]}"; do
        show_summary "${presets[index]}" "${seconds[index]}"
    done
    ((${#failed[@]} == 0)) && return
    echo "test: failed: ${failed[*]}" >&2
    return 1
}

main "$@"
