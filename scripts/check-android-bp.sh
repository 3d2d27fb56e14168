#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# usage: scripts/check-android-bp.sh
#
# Fails unless avi/Android.bp and avi/CMakeLists.txt build the plug-in from the same sources.
set -euo pipefail

cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/../avi"

# The quoted .cpp names of every `srcs: [ ... ]`.
android_sources() {
    sed 's,//.*,,' Android.bp | tr '\n' ' ' | grep -o 'srcs: *\[[^]]*\]' |
        grep -o '"[^"]*\.cpp"' | tr -d '"' | sort
}

# Every .cpp name outside comments.
cmake_sources() {
    sed 's,#.*,,' CMakeLists.txt | grep -oE '[A-Za-z0-9_./-]+\.cpp' | sort
}

if [[ -z $(cmake_sources) ]]; then
    echo "check-android-bp: avi/CMakeLists.txt names no source" >&2
    exit 1
fi
if ! diff -u --label avi/CMakeLists.txt <(cmake_sources) --label avi/Android.bp <(android_sources); then
    echo "check-android-bp: the two build files list different sources" >&2
    exit 1
fi
echo "check-android-bp: avi/Android.bp lists the $(cmake_sources | wc -l) sources that CMake builds"
