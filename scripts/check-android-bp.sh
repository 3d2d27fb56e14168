#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# usage: scripts/check-android-bp.sh
#
# Fails unless avi/Android.bp and avi/CMakeLists.txt build the plug-in from the same sources, and unless
# avi/Android.bp builds it for 64 bits alone and leaves liblog and libmediandk to the defaults.
set -euo pipefail

cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/../avi"

# The quoted names of every list of the name $1, comments left out.
android_list() {
    sed 's,//.*,,' Android.bp | tr '\n' ' ' | grep -oE "\<$1: *\[[^]]*\]" | grep -o '"[^"]*"' | tr -d '"'
}

android_sources() {
    android_list srcs | grep '\.cpp$' | sort
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
if ! sed 's,//.*,,' Android.bp | grep -qE '^ *compile_multilib: *"64",'; then
    echo "check-android-bp: avi/Android.bp does not set compile_multilib to 64" >&2
    exit 1
fi
if android_list shared_libs | grep -xE 'liblog|libmediandk(#.*)?'; then
    echo "check-android-bp: extractor-defaults bring this shared library already" >&2
    exit 1
fi
echo "check-android-bp: avi/Android.bp lists the $(cmake_sources | wc -l) sources that CMake builds"
