#!/usr/bin/env bash
# Builds the library and the section example, cuts the elevation model that comes with it, and says
# where the picture is.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

need_build_tools
build_preset release
say "Cutting the elevation model"
mkdir -p "$root/out"
"$root/build/release/examples/section/section" --svg "$root/out/section.svg" || fail "the example failed"
printf '\nThe picture is out/section.svg; open it in any browser.\n'
