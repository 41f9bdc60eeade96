# Warnings of g++ and clang, as errors: the tree is clean under both.
function(corvane_warnings target)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
        -Wcast-qual -Wnon-virtual-dtor -Woverloaded-virtual -Wnull-dereference -Wundef -Werror)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        target_compile_options(${target} PRIVATE -Wduplicated-cond -Wlogical-op -Wuseless-cast)
        if(CORVANE_SANITIZE)
            # Instrumented code makes the flow analysis see null pointers that are not there.
            target_compile_options(${target} PRIVATE -Wno-null-dereference)
        endif()
    endif()
endfunction()
