# Runs the program, whose answers compare themselves with all points, and on input that it must refuse.
# Variables: PROGRAM, the executable; WORK, a folder for the files.

include(${CMAKE_CURRENT_LIST_DIR}/../support/expect.cmake)

file(MAKE_DIRECTORY ${WORK})
expect_report("--svg hall.svg" "Points +1440\n" "Every answer equals")
expect_report("--rays 50000 --query -3,40 --radius 0" "Points +100000\n" "m +0\n" "Every answer equals")
expect_report("--help" "Usage: nearest")
expect_refusal("--rays 7" "--rays takes a whole number")
expect_refusal("--query 1,2,3" "--query takes 2 numbers")
expect_refusal("--radius -1" "--radius takes a length")
expect_refusal("hall.obj" "there is no option 'hall.obj'")
