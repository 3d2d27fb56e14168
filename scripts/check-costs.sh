#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# usage: scripts/check-costs.sh [--update]
#
# Fails when opening, reading or seeking takes more than 5 % more instructions or calls of the data
# source an item than bench/budgets.txt allows. Counts do not depend on what else the machine does.
# With --update the budgets become what is counted. Builds what it needs of the preset release.
set -euo pipefail

cd "$(dirname "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")")"
case ${1:-} in
    '' | --update) ;;
    *) echo "usage: scripts/check-costs.sh [--update]" >&2 && exit 2 ;;
esac

scripts/bootstrap.sh --costs
[[ -e build/release/build.ninja ]] || cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" --target bench_items >/dev/null
python3 -B scripts/bench/costs.py build/release/bin/bench_items bench/budgets.txt "$@"
