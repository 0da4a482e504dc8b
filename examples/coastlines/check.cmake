# Runs the program on the outlines that come with it, on a small world of a ring lake with an island,
# and on input that it must refuse.
# Variables: PROGRAM, the executable; WORK, a folder for the files.

include(${CMAKE_CURRENT_LIST_DIR}/../support/expect.cmake)

file(MAKE_DIRECTORY ${WORK})
file(WRITE ${WORK}/small.txt "country Ring land\nring\n1 1\n2 1\n2 2\n1 2\nring\n0 0\n9 0\n9 9\n0 9\n"
    "ring\n1 1\n8 1\n8 8\n1 8\n")
file(WRITE ${WORK}/loose.txt "country A\n1 1\n")
file(WRITE ${WORK}/words.txt "country A\nring\n1 one\n")
file(WRITE ${WORK}/far.txt "country A\nring\n1 91\n")
file(WRITE ${WORK}/none.txt "")

# Russia has 17.1 million km2; Maseru lies in Lesotho, the hole of South Africa.
expect_report("--svg map.svg" "Countries  177\n" "Rings      289, 1 of them holes\n"
    "Russia +1[67][0-9][0-9][0-9] " "28.20  -29.50  Lesotho\n" "22.00  -32.80  South Africa\n"
    "-30.00   40.00  at sea\n")
# A lake touches its island at a corner.
expect_report("--at 1.5,1.5 --at 5,5 --at 0.5,0.5 small.txt" "Rings      3, 1 of them holes\n"
    "1.50    1.50  Ring land\n" "5.00    5.00  at sea\n" "0.50    0.50  Ring land\n")
expect_report("--help" "Usage: coastlines")

file(READ ${WORK}/map.svg picture)
if(NOT picture MATCHES "^<svg .*</svg>\n$")
    message(FATAL_ERROR "map.svg is no picture")
endif()

expect_refusal("missing.txt" "cannot read missing.txt")
expect_refusal("loose.txt" "loose.txt, line 2: '1 1' stands in no ring")
expect_refusal("words.txt" "words.txt, line 3: '1 one' is no longitude and latitude")
expect_refusal("far.txt" "far.txt, line 3: '1 91' is not on the Earth")
expect_refusal("none.txt" "none.txt has no country")
expect_refusal("--at 181,0" "--at takes longitudes up to 180")
