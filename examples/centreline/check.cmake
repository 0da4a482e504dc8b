# Runs the program, whose curve has to be closer to the truth than its points are, and on input that it
# must refuse.
# Variables: PROGRAM, the executable; WORK, a folder for the files.

include(${CMAKE_CURRENT_LIST_DIR}/../support/expect.cmake)

file(MAKE_DIRECTORY ${WORK})
expect_report("--svg centreline.svg" "Points +600\n" "From the truth +0\\.[1-3][0-9]+ mm" "Chords +[1-9]")
# Without noise only the stiffness of the curve is left.
expect_report("--noise 0 --controls 120" "From the truth +0\\.00[0-9] mm, at most 0\\.0")
expect_report("--help" "Usage: centreline")
expect_refusal("--points 7" "--points takes a whole number")
expect_refusal("--noise -1" "--noise takes a length")
expect_refusal("--tolerance 0" "--tolerance takes a length")
expect_refusal("curve.obj" "there is no option 'curve.obj'")
