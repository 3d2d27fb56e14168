#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# usage: scripts/check-runpath.sh [PRESET]
#
# Fails when a program or library of a preset that is built (release), in the build tree or as it is
# installed, would look for its libraries anywhere but beside itself ($ORIGIN) and in folders of the
# system: an empty or relative entry is the current folder, where anybody may have put a library.
set -euo pipefail

cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
readonly build=build/${1:-release}
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT

# Prints the dynamic entries of a file of one kind, without their brackets.
entries_of() {
    readelf -d "$2" 2>/dev/null | sed -nE "s/.*\\(($1)\\).*\\[(.*)\\]\$/\\2/p"
}

# usage: check_file FILE: whether all its entries are good; prints the others.
check_file() {
    local path entry good=0
    while IFS= read -r path; do
        while IFS= read -r entry; do
            case $entry in
                "\$ORIGIN" | "\$ORIGIN"/* | /usr/lib/* | /lib/*) ;;
                *) echo "check-runpath: $1: '$entry' in '$path'" >&2 && good=1 ;;
            esac
        done < <(tr : '\n' <<<"$path" | sort -u)
    done < <(entries_of 'RPATH|RUNPATH' "$1")
    while IFS= read -r path; do
        [[ $path != */* ]] || { echo "check-runpath: $1: needs '$path' by its path" >&2 && good=1; }
    done < <(entries_of NEEDED "$1")
    return "$good"
}

cmake --install "$build" --prefix "$prefix" >/dev/null
checked=0 bad=0
while IFS= read -r file; do
    checked=$((checked + 1))
    check_file "$file" || bad=1
done < <(find "$build/bin" "$build/lib" "$build/tests" "$prefix/bin" "$prefix/lib" \
    -type f \( -name '*.so' -o -perm -u+x \))
((checked > 0 && bad == 0)) || exit 1
echo "check-runpath: the $checked files of $build look for libraries beside themselves alone"
