#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# usage: scripts/check-format.sh [--fix]
#
# Fails when a C++ file that git tracks is not laid out as .clang-format says; --fix mends it.
set -euo pipefail

cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
mapfile -t files < <(git ls-files '*.cpp' '*.h')
((${#files[@]} > 0)) || { echo "check-format: git tracks no C++ file" >&2 && exit 1; }
if [[ ${1:-} == --fix ]]; then
    clang-format-14 -i "${files[@]}"
else
    clang-format-14 --dry-run -Werror "${files[@]}"
    echo "check-format: ${#files[@]} files are well laid out"
fi
