# Runs the program on small surfaces whose sections are known, and on input that it must refuse.
# Variables: PROGRAM, the executable; WORK, a folder for the files.

# A cube of half side `half` as OBJ text; `turned` gives inward faces. `first` is the number of its first
# corner.
function(cube out half first turned)
    set(text "")
    foreach(z IN ITEMS -${half} ${half})
        foreach(corner IN ITEMS "-${half} -${half}" "${half} -${half}" "${half} ${half}" "-${half} ${half}")
            string(APPEND text "v ${corner} ${z}\n")
        endforeach()
    endforeach()
    foreach(face IN ITEMS "3 2 1 0" "4 5 6 7" "0 1 5 4" "1 2 6 5" "2 3 7 6" "3 0 4 7")
        string(REPLACE " " ";" corners ${face})
        if(turned)
            list(REVERSE corners)
        endif()
        string(APPEND text "f")
        foreach(corner IN LISTS corners)
            math(EXPR number "${corner} + ${first}")
            string(APPEND text " ${number}")
        endforeach()
        string(APPEND text "\n")
    endforeach()
    set(${out} "${text}" PARENT_SCOPE)
endfunction()

include(${CMAKE_CURRENT_LIST_DIR}/../support/expect.cmake)

file(MAKE_DIRECTORY ${WORK})
cube(shell 2 1 FALSE)
cube(cavity 1 9 TRUE)
file(WRITE ${WORK}/hollow.obj "${shell}${cavity}")
file(WRITE ${WORK}/wrong.obj "v 0 0 0\nv 1 0 0\nv 0 one 0\n")
file(WRITE ${WORK}/beyond.obj "v 0 0 0\nf 1 2 3\n")
file(WRITE ${WORK}/points.obj "v 0 0 0\n")
file(WRITE ${WORK}/short.asc "ncols 3\nnrows 2\ncellsize 1\n1 2 3\n4 5\n")
file(WRITE ${WORK}/far.asc "ncols 2\nnrows 2\ncellsize 1\n1e17 1e17\n100000000000000992 1e17\n")
file(WRITE ${WORK}/pair.asc "ncols 2 3\nnrows 2\ncellsize 1\n1 2\n3 4\n")
file(WRITE ${WORK}/large.obj "v 0 0 0\nv 1e30 0 0\n")
file(WRITE ${WORK}/tilted.asc "ncols 2\nnrows 2\ncellsize 1\n-10 10\n-10 10\n")
file(WRITE ${WORK}/pit.asc "ncols 4\nnrows 4\ncellsize 1\n9 9 9 9\n9 1 1 9\n9 1 1 9\n9 9 9 9\n")

# A hollow cube: the walls around the cavity, wherever the plane lies and however it is turned.
expect_report("--plane 0,0,1,0.5 --point 1.5,0,7 --point 0,0,0 --point 2,0,0 hollow.obj"
    "closed, outer +[0-9]+ points +16.000000 +16.000000"
    "closed, inner +[0-9]+ points +8.000000 +-4.000000"
    "1.5, 0, 7.\n +inside +plane 1" "0, 0, 0.\n +outside +plane 1" "2, 0, 0.\n +on a contour of +plane 1")
expect_report("--plane 3,0,0,0 --svg hollow.svg hollow.obj" "closed, inner +[0-9]+ points +8.000000 +-4.000000")
# Corners in the plane, and a slab that opens the rings.
expect_report("--plane 0,0,1,-1 hollow.obj" "closed, outer +[0-9]+ points +16.000000 +16.000000")
expect_report("--plane 0,0,1,0 --clip -9,0,0,0,0,0 hollow.obj" "plane 1 +0 +2 +12.000000 +0.000000")
# A pit is a hole in the material above the level.
expect_report("--levels 5 pit.asc" "z = 5 +1 +0 +[0-9.]+ +-[0-9.]+")
# The level 0 comes from -10 / 20, rounded up to a negative zero.
expect_report("--levels 20 tilted.asc" "z = 0 +0 +1")
# A normal whose square vanishes.
expect_report("--plane 0,0,1e-200,0 hollow.obj" "closed, outer +[0-9]+ points +16.000000 +16.000000")
expect_report("--help" "Usage: section")

file(READ ${WORK}/hollow.svg picture)
if(NOT picture MATCHES "^<svg .*</svg>\n$")
    message(FATAL_ERROR "hollow.svg is no picture")
endif()

expect_refusal("missing.obj" "cannot read missing.obj")
expect_refusal("${WORK}" "cannot read /")
expect_refusal("--levels 1 far.asc" "step is too small")
expect_refusal("pair.asc" "pair.asc, line 1: '3' is one word too many")
expect_refusal("large.obj" "large.obj, line 2: '1e30' is out of range")
expect_refusal("--plane 0,0,1,0, hollow.obj" "--plane takes 4 numbers")
expect_refusal("--plane 0,0,1,0 --clip 0,0,0,1e20,0,0 hollow.obj" "too far from the surface")
expect_refusal("wrong.obj" "wrong.obj, line 3: 'one' is not a number")
expect_refusal("beyond.obj" "beyond.obj, line 2: there is no point 2")
expect_refusal("points.obj" "no triangle")
expect_refusal("short.asc" "short.asc, line 5: the grid ends after 5 of 6 heights")
expect_refusal("--plane 0,0,1,-9 hollow.obj" "plane 1 misses the surface")
expect_refusal("--plane 0,0,1 hollow.obj" "--plane takes 4 numbers")
expect_refusal("--sideways hollow.obj" "there is no option '--sideways")
expect_refusal("--svg missing/picture.svg hollow.obj" "cannot write missing/picture.svg")
