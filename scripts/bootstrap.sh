#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Installs the Debian 12 packages that this project needs. Run again, it installs only what is
# missing; with nothing missing it touches neither the network nor apt.
set -euo pipefail

usage() {
    cat <<'TEXT'
usage: scripts/bootstrap.sh [--clang] [--cross] [--lint] [--coverage] [--costs] [--bench]
                            [--all]

Installs what building and testing the `release` and `coverage` presets needs, and with
  --clang   what the presets debug, asan, intsan, tsan and fuzz need as well
  --cross   what the preset aarch64 needs as well (adds the architecture arm64 to dpkg)
  --lint    what scripts/lint.sh needs as well
  --coverage
            what scripts/coverage.sh needs as well
  --costs   what scripts/check-costs.sh needs as well
  --all     all of these
  --bench   what scripts/bench.sh needs as well, which is no part of --all
TEXT
}

# ffmpeg makes the media that the tests read; googletest is built from its sources with our flags.
readonly base_packages=(
    cmake ninja-build g++
    android-libutils-dev android-liblog-dev zlib1g-dev
    libcli11-dev libfmt-dev nlohmann-json3-dev
    googletest ffmpeg python3)

# llvm-14 holds the symbolizer of the sanitizers' reports, libclang-rt-14-dev their run time; lld-14
# links for control-flow integrity.
readonly clang_packages=(clang-14 libclang-rt-14-dev llvm-14 lld-14)

# The build adds p7zip-full's 7z.so by itself: see scripts/fetch-arm64-7z.sh.
readonly cross_packages=(
    g++-aarch64-linux-gnu qemu-user proot
    libc6:arm64 libstdc++6:arm64
    android-libutils:arm64 android-liblog:arm64
    zlib1g-dev:arm64 libfmt-dev:arm64)

readonly lint_packages=(clang-format-14 clang-tidy-14 shellcheck zsh fish mandoc git)

readonly coverage_packages=(gcovr)

readonly costs_packages=(valgrind)

# What is measured beside the plug-in.
readonly bench_packages=(
    "${costs_packages[@]}" libbenchmark-dev pkg-config
    libavformat-dev libgstreamer1.0-dev gstreamer1.0-plugins-good)

die() {
    echo "bootstrap: $*" >&2
    exit 1
}

# Sees to it that as_root will work, or ends with what the user has to have installed.
check_rights() {
    ((EUID == 0)) && return
    command -v sudo >/dev/null && sudo -v && return
    die "installing these packages takes root or sudo: ${missing[*]}"
}

as_root() {
    if ((EUID == 0)); then "$@"; else sudo "$@"; fi
}

# Fills `missing` with those of the given packages (NAME or NAME:ARCH) that are not installed.
find_missing() {
    local -A installed=()
    local native name arch status
    native=$(dpkg --print-architecture)
    while read -r name arch status; do
        [[ $status == *" installed" ]] || continue
        [[ $arch == "$native" || $arch == all ]] && installed[$name]=1
        installed[$name:$arch]=1
    done < <(dpkg-query -W -f='${Package} ${Architecture} ${Status}\n')
    missing=()
    for name in "$@"; do
        [[ -v installed[$name] ]] || missing+=("$name")
    done
}

# Runs a command as root; its output is shown only if it fails.
quietly_as_root() {
    local log
    log=$(mktemp)
    if ! as_root "$@" </dev/null >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        die "failed: $*"
    fi
    rm -f "$log"
}

install_missing() {
    local apt=(env DEBIAN_FRONTEND=noninteractive apt-get -q -y -o DPkg::Lock::Timeout=300)
    echo "bootstrap: installing ${missing[*]}" >&2
    if [[ " ${missing[*]} " == *":arm64 "* ]] &&
        ! dpkg --print-foreign-architectures | grep -qx arm64; then
        quietly_as_root dpkg --add-architecture arm64
    fi
    quietly_as_root "${apt[@]}" update
    quietly_as_root "${apt[@]}" install --no-install-recommends --no-remove "${missing[@]}"
}

main() {
    local packages=("${base_packages[@]}")
    while (($# > 0)); do
        case $1 in
            --clang) packages+=("${clang_packages[@]}") ;;
            --cross) packages+=("${cross_packages[@]}") ;;
            --lint) packages+=("${lint_packages[@]}") ;;
            --coverage) packages+=("${coverage_packages[@]}") ;;
            --costs) packages+=("${costs_packages[@]}") ;;
            --bench) packages+=("${bench_packages[@]}") ;;
            --all)
                packages+=("${clang_packages[@]}" "${cross_packages[@]}" "${lint_packages[@]}"
                    "${coverage_packages[@]}" "${costs_packages[@]}")
                ;;
            -h | --help) usage && exit ;;
            *) usage >&2 && exit 2 ;;
        esac
        shift
    done
    command -v dpkg-query >/dev/null || die "this is no Debian system: dpkg is missing"

    local missing=()
    find_missing "${packages[@]}"
    ((${#missing[@]} == 0)) && return
    check_rights
    install_missing
}

main "$@"
