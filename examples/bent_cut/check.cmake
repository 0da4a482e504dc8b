# Cuts a flat grid along outlines whose parts are known, and gives input that must be refused.
# Variables: PROGRAM, the executable; WORK, a folder for the files.

include(${CMAKE_CURRENT_LIST_DIR}/../support/expect.cmake)

file(MAKE_DIRECTORY ${WORK})
file(WRITE ${WORK}/flat.asc
    "ncols 5\nnrows 5\ncellsize 2\n0 0 0 0 0\n0 0 0 0 0\n0 0 0 0 0\n0 0 0 0 0\n0 0 0 0 0\n")

# Along the lines of the grid nothing is crossed; inside them by a half, the rim of the square is.
expect_report("--direction 0,0,1 --point 2,2,0 --point 6,2,0 --point 6,6,0 --point 2,6,0 flat.asc"
    "Outline +4 points, length 16.000" "inside +8 +25.00 % +16.000" "crossed +0 +0.00 %"
    "outside +24 +75.00 % +48.000")
expect_report("--direction 0,0,1 --point 1,1,0 --point 7,1,0 --point 7,7,0 --point 1,7,0 flat.asc"
    "Displacements +-3.000 to any" "inside +8 +25.00 %")
# Swept at a slant, an outline ten higher comes down beside itself.
expect_report("--direction 0.2,0,1 --point 3,1,10 --point 9,1,10 --point 9,7,10 --point 3,7,10 flat.asc"
    "inside +8 +25.00 % +16.000")
expect_report("--svg default.svg --notions notions.svg" "Outline +7 points" "ruled out")
expect_report("--help" "Usage: bent_cut")

foreach(name IN ITEMS default notions)
    file(READ ${WORK}/${name}.svg picture)
    if(NOT picture MATCHES "^<svg .*</svg>\n$" OR picture MATCHES "nan|inf[^o]")
        message(FATAL_ERROR "${name}.svg is no picture")
    endif()
endforeach()

expect_refusal("missing.asc" "cannot read missing.asc")
expect_refusal("--point 1,1,0 --point 2,2,0 flat.asc" "--point: an outline takes three points")
expect_refusal("--point 1,1 flat.asc" "--point takes 3 numbers")
expect_refusal("--direction 0,0,0 flat.asc" "--direction needs a length")
expect_refusal("--svg missing/picture.svg flat.asc" "cannot write missing/picture.svg")
