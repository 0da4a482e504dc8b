# Warnings and floating-point rules of one target. The rules are set per target, never globally.

# The same input must give the same bits with every compiler and at every optimisation level, so
# a multiplication and an addition are never fused and nothing is reassociated.
function(norvek_compile_rules target)
    target_compile_features(${target} PRIVATE cxx_std_20)
    set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
    target_compile_options(${target} PRIVATE
        -ffp-contract=off
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
        -Wcast-qual -Wformat=2 -Wundef -Woverloaded-virtual
        # GCC 12 sees overlapping copies in std::string's operator+ that are not there.
        $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
        $<$<BOOL:${NORVEK_WARNINGS_AS_ERRORS}>:-Werror>)
    norvek_sanitize(${target})
endfunction()
