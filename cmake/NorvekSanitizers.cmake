# Sanitizers, chosen by NORVEK_SANITIZE: empty, "address" (with undefined behaviour) or "thread".

set(NORVEK_SANITIZE "" CACHE STRING "Sanitizer set: empty, address (with undefined) or thread")
set_property(CACHE NORVEK_SANITIZE PROPERTY STRINGS "" address thread)

if(NOT NORVEK_SANITIZE MATCHES "^(|address|thread)$")
    message(FATAL_ERROR
        "NORVEK_SANITIZE is '${NORVEK_SANITIZE}': choose address or thread; they cannot be combined.")
endif()

function(norvek_sanitize target)
    if(NORVEK_SANITIZE STREQUAL "address")
        set(flags -fsanitize=address,undefined,float-cast-overflow -fno-sanitize-recover=all)
    elseif(NORVEK_SANITIZE STREQUAL "thread")
        set(flags -fsanitize=thread)
    else()
        return()
    endif()
    target_compile_options(${target} PRIVATE ${flags} -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE ${flags})
endfunction()
