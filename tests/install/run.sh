#!/usr/bin/env bash
# Uses an installed package from outside: by CMake and by pkg-config. Argument: the install prefix.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
prefix=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake -S "$here" -B "$work/build" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$work/build" >/dev/null
"$work/build/consumer"

libdir=$(dirname "$(find "$prefix" -name norvek_math.pc)")
flags=$(PKG_CONFIG_PATH=$libdir pkg-config --cflags --libs norvek_math)
# shellcheck disable=SC2086 # the flags are separate words
"${CXX:-c++}" -std=c++20 "$here/consumer.cpp" -o "$work/by-pkg-config" $flags
LD_LIBRARY_PATH=$libdir/.. "$work/by-pkg-config"
