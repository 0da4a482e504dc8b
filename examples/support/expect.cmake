# Expectations of an example program. Variables: PROGRAM, the executable; WORK, the folder it runs in.

get_filename_component(name ${PROGRAM} NAME_WE)

# The report of a run holds every one of the expected patterns.
function(expect_report arguments)
    separate_arguments(words UNIX_COMMAND "${arguments}")
    execute_process(COMMAND ${PROGRAM} ${words} WORKING_DIRECTORY ${WORK}
        OUTPUT_VARIABLE output ERROR_VARIABLE error RESULT_VARIABLE status)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "${name} ${arguments}: status ${status}: ${error}")
    endif()
    foreach(pattern IN LISTS ARGN)
        if(NOT output MATCHES "${pattern}")
            message(FATAL_ERROR "${name} ${arguments}: no '${pattern}' in\n${output}")
        endif()
    endforeach()
endfunction()

# A run is refused with status 1 and one line that matches.
function(expect_refusal arguments pattern)
    separate_arguments(words UNIX_COMMAND "${arguments}")
    execute_process(COMMAND ${PROGRAM} ${words} WORKING_DIRECTORY ${WORK}
        OUTPUT_VARIABLE output ERROR_VARIABLE error RESULT_VARIABLE status)
    if(NOT status EQUAL 1 OR NOT error MATCHES "^${name}: [^\n]*${pattern}[^\n]*\n$")
        message(FATAL_ERROR "${name} ${arguments}: status ${status}, '${error}'")
    endif()
endfunction()
