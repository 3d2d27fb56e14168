#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# usage: scripts/check-hardening.sh [PRESET...]
#
# Fails unless the programs and libraries that the presets (release), all of them built, install are
# hardened as the platform hardens its own: position-independent, no memory that is both written and
# executed, tables of addresses read-only once they are bound at the start, stack protector, checked
# variants of functions that write to buffers, and on 64-bit ARM segments that pages of 16 KiB can map.
set -euo pipefail

cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
readonly page_size=16384
presets=("$@")
((${#presets[@]} > 0)) || presets=(release)
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT

# What holds no array on a stack imports no check of one.
readonly with_arrays='avitool|libaviextractor\.so'

bad=0
complain() {
    echo "check-hardening: $*" >&2
    bad=1
}

# usage: check_segments FILE
check_segments() {
    local segments type flags align
    segments=$(readelf -lW "$1" | awk '$2 ~ /^0x/ {
        flags = ""; for (i = 7; i < NF; ++i) flags = flags $i; print $1, flags, $NF }')
    grep -q '^GNU_RELRO ' <<<"$segments" || complain "$1: no segment becomes read-only after binding"
    grep -q '^GNU_STACK ' <<<"$segments" || complain "$1: does not say that its stack is not executed"
    while read -r type flags align; do
        case $type:$flags in
            GNU_STACK:*E*) complain "$1: its stack may be executed" ;;
            LOAD:*W*E*) complain "$1: a segment is both written and executed" ;;
        esac
        [[ $type != LOAD || $2 != AArch64 ]] || ((align % page_size == 0)) ||
            complain "$1: a segment is aligned to $align bytes, which pages of $page_size cannot map"
    done <<<"$segments"
}

# usage: check_dynamic FILE
check_dynamic() {
    local entries
    entries=$(readelf -dW "$1")
    grep -qE '\(FLAGS\).*BIND_NOW|\(FLAGS_1\).*NOW|\(BIND_NOW\)' <<<"$entries" ||
        complain "$1: functions are bound at their first call, by a table that stays writable"
    ! grep -qE '\(TEXTREL\)|\(FLAGS\).*TEXTREL' <<<"$entries" || complain "$1: code is relocated"
}

# Functions whose checked variant stands for every call in code built with FORTIFY. No vsnprintf: the
# C++ library takes its address for std::to_string.
readonly replaced='(s|sn|f|d|as|v|vs|vf|vd|vas)?printf|gets|realpath'

# usage: check_imports FILE
check_imports() {
    local imported unchecked
    imported=$(nm -D --undefined-only --format=just-symbols "$1" | sed 's/@.*//')
    unchecked=$(grep -xE "$replaced" <<<"$imported" | paste -sd ' ') || true
    [[ -z $unchecked ]] || complain "$1: built without FORTIFY, calls $unchecked"
    [[ ${1##*/} =~ ^($with_arrays)$ ]] || return 0
    grep -qx __stack_chk_fail <<<"$imported" || complain "$1: built without the stack protector"
    grep -v '^__stack_chk_fail$' <<<"$imported" | grep -q '^__.*_chk$' ||
        complain "$1: calls no function that FORTIFY checks"
}

# usage: check_file FILE
check_file() {
    local header
    header=$(readelf -hW "$1")
    grep -qE 'Type: +DYN ' <<<"$header" || complain "$1: is loaded at a fixed address"
    check_segments "$1" "$(sed -nE 's/ +Machine: +//p' <<<"$header")"
    check_dynamic "$1"
    check_imports "$1"
}

for preset in "${presets[@]}"; do
    cmake --install "build/$preset" --prefix "$prefix/$preset" >/dev/null
    checked=0
    for file in "$prefix/$preset"/bin/* "$prefix/$preset"/lib/*.so; do
        check_file "$file"
        checked=$((checked + 1))
    done
    echo "check-hardening: $preset: looked at $checked files"
done
((bad == 0)) || exit 1
