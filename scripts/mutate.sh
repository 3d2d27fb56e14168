#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# usage: scripts/mutate.sh [--count N] [--jobs N] [--only TEXT]... [--list]
#
# Tries small faults over avi/ (160 when no N is given), one at a time: a comparison, a constant, a
# statement left out and so on. Each is compiled in a scratch copy of the last commit below build/mutate
# and played to the test programs until one fails or does not end. Prints a line a fault; exit status 1
# when more than one in twenty goes unnoticed that scripts/mutation/survivors.txt does not explain, or
# when that list is out of date.
set -euo pipefail

cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
exec nice -n 19 python3 -B scripts/mutation/run.py "$@"
