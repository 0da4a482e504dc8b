#!/usr/bin/env bash
# Builds the library and runs the whole test suite. Arguments go to the CMake configuration.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

need_build_tools
build_preset release "$@"
say "Testing"
ctest --test-dir "$root/build/release" --parallel "$(nproc)" --output-on-failure || fail "there are failing tests"
