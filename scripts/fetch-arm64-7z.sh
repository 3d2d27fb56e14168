#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# usage: scripts/fetch-arm64-7z.sh FOLDER
#
# Puts arm64's usr/lib/p7zip/7z.so below FOLDER. The platform's libbacktrace needs it at run time,
# and p7zip-full:arm64 cannot be installed beside the native one: its package is only unpacked.
set -euo pipefail

main() {
    local folder=$1
    [[ -e $folder/usr/lib/p7zip/7z.so ]] && return

    mkdir -p "$folder"
    cd "$folder"
    rm -f p7zip-full_*_arm64.deb
    # Root downloads as itself: apt's own user may not write here.
    local apt=(apt-get -q -o APT::Sandbox::User=root -o DPkg::Lock::Timeout=300)
    if ! "${apt[@]}" download p7zip-full:arm64; then
        "${apt[@]}" update  # the package lists may be gone, as in a container's image
        "${apt[@]}" download p7zip-full:arm64
    fi
    dpkg -x p7zip-full_*_arm64.deb .
    rm -f p7zip-full_*_arm64.deb
    [[ -e usr/lib/p7zip/7z.so ]]
}

(($# == 1)) || { echo "usage: $0 FOLDER" >&2 && exit 2; }
main "$1"
