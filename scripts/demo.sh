#!/usr/bin/env bash
# Builds the library and its examples, cuts the elevation model that comes with it, lays a plane
# through an image volume, counts heights, brings moved crops back, and says where the pictures are.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

need_build_tools
build_preset release
say "Cutting the elevation model"
mkdir -p "$root/out"
"$root/build/release/examples/section/section" --svg "$root/out/section.svg" || fail "the example failed"
say "Laying a plane through an image volume"
"$root/build/release/examples/slices/slices" --svg "$root/out/slices.svg" || fail "the example failed"
say "Counting the heights of the elevation model"
"$root/build/release/examples/histogram/histogram" --svg "$root/out/histogram.svg" || fail "the example failed"
say "Bringing moved crops back by nearest points"
"$root/build/release/examples/registration/registration" --svg "$root/out/registration.svg" || fail "the example failed"
printf '\nThe pictures section.svg, slices.svg, histogram.svg and registration.svg are in out; open them in any browser.\n'
