#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# usage: scripts/coverage.sh [PERCENT]
#
# Runs the suite, the replays of the fuzzers' corpora included, over the `coverage` preset and shows
# which lines of avi/ it reaches, file by file, with the numbers of those that it does not. Fails when
# fewer than PERCENT of the lines (98 unless given) are reached, or a test fails. Installs the Debian
# packages that this needs. docs/security.md says why the others are not reached.
set -euo pipefail

cd "$(dirname "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")")"
readonly wanted=${1:-98} build=build/coverage

scripts/bootstrap.sh --coverage
mkdir -p "$build"
# What an earlier run counted is not of this one.
find "$build" -name '*.gcda' -delete
scripts/test.sh coverage
# As the plug-in is compiled, wherever it ran. Threads may bring the count of a branch below 0, which
# gcovr does not know; lines are what counts here.
gcovr --root . --filter avi/ --gcov-ignore-parse-errors --object-directory "$build" \
    --fail-under-line "$wanted" "$build/avi"
