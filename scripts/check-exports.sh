#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# usage: scripts/check-exports.sh [PRESET]
#
# Fails unless the plug-in of a preset that is built (release) exports GETEXTRACTORDEF alone.
set -euo pipefail

cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
readonly library=build/${1:-release}/lib/libaviextractor.so
exported=$(nm -D --defined-only --format=just-symbols "$library")
if [[ $exported != GETEXTRACTORDEF ]]; then
    echo "check-exports: $library must export GETEXTRACTORDEF alone, but exports:" >&2
    echo "${exported:-nothing}" >&2
    exit 1
fi
echo "check-exports: $library exports GETEXTRACTORDEF alone"
