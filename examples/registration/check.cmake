# Runs the program and asks how near it comes to the true motions, and on input that it must refuse.
# Variables: PROGRAM, the executable; WORK, a folder for the files.

include(${CMAKE_CURRENT_LIST_DIR}/../support/expect.cmake)

file(MAKE_DIRECTORY ${WORK})
file(WRITE ${WORK}/small.asc "ncols 3\nnrows 3\ncellsize 1\n0 1 2\n1 1 2\n2 3 1\n")

# Some twelve metres at most, of 130 and from a grid of 80; every crop hangs on the root.
expect_report("--svg map.svg" "Recovered: 0\\.[01][0-9]+ degrees and [0-9]\\.[0-9]+ "
    " 1 +0 +1[0-9]\\.[0-9] % +13[0-9]\\.[0-9]+ +[12]?[0-9]\\.[0-9]+\n" " 4 +0 +1[0-9]\\.")
expect_report("--help" "Usage: registration")

file(READ ${WORK}/map.svg picture)
if(NOT picture MATCHES "^<svg .*</svg>\n$")
    message(FATAL_ERROR "map.svg is no picture")
endif()

expect_refusal("missing.asc" "cannot read missing.asc")
expect_refusal("small.asc" "too few points")
expect_refusal("--shift 1,2" "--shift takes 3 numbers")
expect_refusal("--shift 1e6,0,0" "comes near the other")
expect_refusal("--sideways 1" "there is no option '--sideways")
