#!/usr/bin/env bash
# Builds the library and its examples, cuts the elevation model that comes with it, lays a plane
# through an image volume, and says where the pictures are.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

need_build_tools
build_preset release
say "Cutting the elevation model"
mkdir -p "$root/out"
"$root/build/release/examples/section/section" --svg "$root/out/section.svg" || fail "the example failed"
say "Laying a plane through an image volume"
"$root/build/release/examples/slices/slices" --svg "$root/out/slices.svg" || fail "the example failed"
printf '\nThe pictures are out/section.svg and out/slices.svg; open them in any browser.\n'
