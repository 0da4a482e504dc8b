# What the scripts share: packages, a build directory, clear failures. Sourced, not run.
# shellcheck shell=bash

set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
script=${0##*/}

say() {
    printf '\n== %s\n' "$*"
}

fail() {
    printf '\n%s: %s\n' "$script" "$*" >&2
    exit 1
}

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        fail "needs root or sudo to install: $*"
    fi
}

# Installs the Debian packages that are not there yet; does nothing, quickly, when all are.
need_packages() {
    local missing=() package
    for package in "$@"; do
        if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed'; then
            missing+=("$package")
        fi
    done
    [ ${#missing[@]} -eq 0 ] && return
    command -v apt-get >/dev/null || fail "these Debian packages are missing: ${missing[*]}"
    say "Installing ${missing[*]}"
    as_root apt-get update -q || fail "the package lists could not be fetched"
    as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install -q -y --no-install-recommends "${missing[@]}" ||
        fail "the packages could not be installed: ${missing[*]}"
}

need_build_tools() {
    need_packages g++ cmake ninja-build libboost-dev libeigen3-dev libgtest-dev
}

# Configures and builds a preset; further arguments go to the configuration.
build_preset() {
    local preset=$1
    shift
    local launcher=()
    if command -v ccache >/dev/null; then
        launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    fi
    say "Configuring ($preset)"
    (cd "$root" && cmake --preset "$preset" "${launcher[@]}" "$@") ||
        fail "the configuration failed"
    say "Building ($preset)"
    cmake --build "$root/build/$preset" || fail "the build failed"
}
