# How the unit tests are built. They are many files of short steps, so compiling them takes far
# longer than running them. The engine inside them is optimised as ever; only their own text is not.

# What each unit test begins with, compiled once for all of them. Only <gtest/gtest.h> is in: with
# any more, a test could forget an include of its own unseen.
function(corvane_unit_test_headers)
    set(source "${CMAKE_BINARY_DIR}/unit_test_headers.cpp")
    file(CONFIGURE OUTPUT "${source}" CONTENT "// Owner of the headers.\n")
    add_library(corvane_unit_test_headers OBJECT "${source}")
    target_link_libraries(corvane_unit_test_headers PRIVATE GTest::gtest)
    target_precompile_headers(corvane_unit_test_headers PRIVATE <gtest/gtest.h>)
    # The compiler takes them only where all flags are equal, and with -Wpedantic it is another C++.
    corvane_warnings(corvane_unit_test_headers)
    corvane_light_optimisation(corvane_unit_test_headers)
endfunction()

# The text of the target itself is hardly optimised, neither by file nor at link time.
function(corvane_light_optimisation name)
    set_target_properties(${name} PROPERTIES INTERPROCEDURAL_OPTIMIZATION OFF)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
        target_compile_options(${name} PRIVATE -Og)
    endif()
endfunction()

# For a test of short steps.
function(corvane_quick_to_build name)
    corvane_light_optimisation(${name})
    target_precompile_headers(${name} REUSE_FROM corvane_unit_test_headers)
endfunction()
