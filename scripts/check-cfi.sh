#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# usage: scripts/check-cfi.sh [PROGRAM...]
#
# Builds what is installed with control-flow integrity, in build/cfi, as the platform builds
# extractors. Fails unless its libraries check their calls and those of each other, and unless the
# test PROGRAMs (those of tests/behaviour) pass with them.
set -euo pipefail

cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
readonly build=build/cfi
programs=("$@")

# usage: check_library FILE: whether it answers for its functions, and asks about those it calls.
check_library() {
    local symbols
    symbols=$(nm -D --format=just-symbols "$1" | sed 's/@.*//')
    grep -qx __cfi_check <<<"$symbols" ||
        { echo "check-cfi: $1 has no __cfi_check" >&2 && return 1; }
    [[ $1 != */libaviextractor.so ]] || grep -qx __cfi_slowpath <<<"$symbols" ||
        { echo "check-cfi: $1 checks no call through a pointer" >&2 && return 1; }
}

cmake --preset debug -B "$build" -DCMAKE_BUILD_TYPE=Release -DAVI_CFI=ON >/dev/null
if ((${#programs[@]} == 0)); then
    mapfile -t programs < <(ninja -C "$build" -t targets all |
        sed -nE 's,^bin/(behaviour_[a-z]+): .*,\1,p')
fi
((${#programs[@]} > 0)) || { echo "check-cfi: there is no test program" >&2 && exit 1; }
cmake --build "$build" -j "$(nproc)" --target avitool aviextractor "${programs[@]}"

for library in "$build"/lib/*.so; do
    check_library "$library"
done
for program in "${programs[@]}"; do
    "$build/bin/$program" --gtest_brief=1
done
echo "check-cfi: the libraries of $build check their calls; ${#programs[@]} test programs pass"
