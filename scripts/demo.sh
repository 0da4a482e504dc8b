#!/usr/bin/env bash
# Builds the library and its examples, runs every example, and says where the pictures are.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

draw() {
    say "$2"
    "$root/build/release/examples/$1/$1" --svg "$root/out/$1.svg" || fail "the example failed"
}

need_build_tools
build_preset release
mkdir -p "$root/out"
draw section "Cutting the elevation model"
draw slices "Laying a plane through an image volume"
draw histogram "Counting the heights of the elevation model"
draw coastlines "Measuring and triangulating countries"
draw nearest "Asking a k-d tree"
draw registration "Bringing moved crops back by nearest points"
draw bent_cut "Cutting the elevation model along a bent outline"
draw centreline "Fitting a curve along a winding vessel"
printf '\nThe pictures of the examples are in out, one SVG each; open them in any browser.\n'
