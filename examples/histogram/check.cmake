# Runs the program on heights whose shares are known, and on input that it must refuse. Variables:
# PROGRAM, the executable; WORK, a folder for the files.

include(${CMAKE_CURRENT_LIST_DIR}/../support/expect.cmake)

file(MAKE_DIRECTORY ${WORK})
file(WRITE ${WORK}/steps.asc "ncols 3\nnrows 3\ncellsize 1\n0 10 20\n10 10 20\n20 30 15\n")
file(WRITE ${WORK}/flat.asc "ncols 2\nnrows 2\ncellsize 1\n7 7\n7 7\n")

# A height on a boundary belongs to the interval below it.
expect_report("--step 10 steps.asc" "Heights +9, from 0.000 to 30.000" "Mean +15.000"
    " 0 +10 +44.44 % +44.44 % +7.500" " 10 +20 +44.44 % +88.89 % +18.750"
    " 20 +30 +11.11 % +100.00 % +30.000")
expect_report("flat.asc" "Mean +7.000" "Spread +0.000" "100.00 % +100.00 % +7.000")
expect_report("--svg default.svg" "Most frequent +[0-9]+")
expect_report("--help" "Usage: histogram")

file(READ ${WORK}/default.svg picture)
if(NOT picture MATCHES "^<svg .*</svg>\n$")
    message(FATAL_ERROR "default.svg is no picture")
endif()

expect_refusal("missing.asc" "cannot read missing.asc")
expect_refusal("--step 0 steps.asc" "--step needs a positive length")
expect_refusal("--step 1e-9 steps.asc" "--step is too small")
expect_refusal("--steps 1 steps.asc" "there is no option '--steps")
expect_refusal("--svg" "--svg needs a value")
