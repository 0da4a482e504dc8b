# Runs the program on planes whose corners are known, and on options that it must refuse. Variables:
# PROGRAM, the executable; WORK, a folder for the files.

include(${CMAKE_CURRENT_LIST_DIR}/../support/expect.cmake)

file(MAKE_DIRECTORY ${WORK})

# The resampled image of a run, as drawn.
function(image out arguments)
    expect_report("${arguments} --svg image.svg" "Resampled")
    file(READ ${WORK}/image.svg picture)
    string(REGEX MATCH "<g id=\"image\".*</g>" group "${picture}")
    set(${out} "${group}" PARENT_SCOPE)
endfunction()

# Across the slices: the frame on the plane is the world's.
expect_report("--code RBP --centre 0,0,0 --normal 0,0,1 --pixels 3,3 --pixel 10"
    "RBP, right-handed; not axial" "1 +-10.000 +-10.000 +0.000 +42.500 +42.500 +31.500  inside"
    "Resampled  9 of 9")
expect_report("--code plb --normal 0,0,1 --pixels 3,3 --pixel 10 --centre 1000,0,0"
    "PLB, left-handed; read as PRB, .*; axial" "3 +1010.000 +10.000 +0.000 .*outside" "Resampled  0 of 9")
# A quarter turn about the normal takes the first corner to the second.
expect_report("--code RBP --normal 0,0,1 --centre 0,0,0 --pixels 3,3 --pixel 10 --turn 90" "1 +10.000 +-10.000 +0.000")

# The head stands in the world: however a volume is stored, the plane shows the same.
set(cube "--size 40,40,40 --spacing 5,5,5 --pixels 50,40 --pixel 4")
image(reference "${cube} --code RBP")
foreach(code IN ITEMS LBP RTP PRB TAL ALT)
    image(other "${cube} --code ${code}")
    if(NOT other STREQUAL reference)
        message(FATAL_ERROR "a volume stored as ${code} looks otherwise than one stored as RBP")
    endif()
endforeach()

expect_report("--help" "Usage: slices")
expect_refusal("--code RBX" "three letters of A, P, L, R, T and B")
expect_refusal("--code RBPL" "three letters")
expect_refusal("--code RAP" "two axes of RAP lie along the same line")
expect_refusal("--size 1,2,3" "--size takes whole numbers from 2 to 512")
expect_refusal("--spacing 1,2,0" "--spacing takes lengths")
expect_refusal("--normal 0,0,0" "--normal needs a direction")
expect_refusal("--pixels 9" "--pixels takes 2 numbers")
expect_refusal("--sideways 1" "there is no option '--sideways")
expect_refusal("--svg" "--svg needs a value")
expect_refusal("--svg missing/picture.svg" "cannot write missing/picture.svg")
