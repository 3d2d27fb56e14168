#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# usage: scripts/lint.sh [FOLDER...]
#
# Everything that can be checked without running the product: the scripts, the layout of the
# sources, the lists that have to agree with each other, and clang-tidy over the C++ files below
# the FOLDERs (avi, service and tools when none is named).
set -euo pipefail

cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
folders=("$@")
((${#folders[@]} > 0)) || folders=(avi service tools)

scripts/bootstrap.sh --clang --lint
shellcheck scripts/*.sh .ci/run
scripts/check-format.sh
scripts/check-android-bp.sh
scripts/check-completions.sh
scripts/check-layers.py
python3 -B scripts/mutation/faults_test.py

cmake --preset debug >/dev/null # for the compilers' command lines
git ls-files -- "${folders[@]}" | grep '\.cpp$' |
    xargs -P "$(nproc)" -n 4 clang-tidy-14 -p build/debug --quiet \
        2> >(grep -v 'warnings generated' >&2) # those of system headers, which it does not show
echo "lint: clang-tidy finds nothing below ${folders[*]}"
