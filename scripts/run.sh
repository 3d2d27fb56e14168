#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# usage: scripts/run.sh [FILE...]
#
# Builds the plug-in and shows the tracks and the samples of AVI files: of samples/clip.avi when
# none is named. The first run installs the Debian packages that the build needs.
set -euo pipefail

root=$(dirname "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")")

# Only what fails is worth reading: the tool's output is what the user came for.
build_quietly() {
    local log=$root/build/run.log
    mkdir -p "$root/build"
    if ! (cd "$root" && cmake --preset release && cmake --build --preset release \
        --target avitool aviextractor -j "$(nproc)") >"$log" 2>&1; then
        cat "$log" >&2
        echo "run: the build failed" >&2
        exit 1
    fi
}

main() {
    local files=("$@") tool=$root/build/release/bin/avitool status=0 file
    ((${#files[@]} > 0)) || files=("$root/samples/clip.avi")
    "$root/scripts/bootstrap.sh"
    build_quietly
    for file in "${files[@]}"; do
        "$tool" info "$file" && "$tool" samples "$file" || status=$?
    done
    return "$status"
}

main "$@"
