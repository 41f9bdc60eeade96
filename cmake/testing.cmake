# One line a test in the lists: corvane_test(), corvane_transcript(), corvane_fuzz().

include(unit_tests)
if(CORVANE_TESTS)
    find_package(GTest REQUIRED)
    include(GoogleTest)
    corvane_unit_test_headers()
endif()
find_package(Python3 COMPONENTS Interpreter)

# corvane_test(name LABEL unit SOURCES a.cpp [LIBRARIES lib] [TIMEOUT seconds])
# A GoogleTest program with the fake clock; each of its cases is a test of its own.
function(corvane_test name)
    cmake_parse_arguments(arg "" "LABEL;TIMEOUT" "SOURCES;LIBRARIES" ${ARGN})
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 300)
    endif()
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE corvane_core corvane_test_support
                                          corvane_fake_clock ${arg_LIBRARIES}
                                          GTest::gtest GTest::gtest_main)
    target_compile_definitions(${name} PRIVATE
        CORVANE_TEST_DATA="${CMAKE_SOURCE_DIR}/tests/data")
    corvane_warnings(${name})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # g++ 12 sees overflows in strings that it has inlined across files at link time.
        target_link_options(${name} PRIVATE -Wno-stringop-overflow)
    endif()
    if(arg_LABEL STREQUAL "unit")
        corvane_quick_to_build(${name})
    endif()
    # The longest cases are among these; begun last, one of them would keep one core waiting.
    set(cost 0)
    if(arg_LABEL MATCHES "^(property|slow)$")
        set(cost 100)
    endif()
    gtest_discover_tests(${name} TEST_PREFIX "${name}." DISCOVERY_TIMEOUT 60
        WORKING_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}"
        PROPERTIES LABELS ${arg_LABEL} TIMEOUT ${arg_TIMEOUT} COST ${cost})
endfunction()

# corvane_transcript(file): the real program in an empty folder, its words compared whole.
function(corvane_transcript file)
    get_filename_component(stem ${file} NAME_WE)
    add_test(NAME transcript.${stem}
        COMMAND ${Python3_EXECUTABLE} ${CMAKE_SOURCE_DIR}/tests/transcript/run.py
                $<TARGET_FILE:corvane> ${file})
    set_tests_properties(transcript.${stem} PROPERTIES LABELS transcript TIMEOUT 120)
endfunction()

# corvane_fuzz(name): fuzz/<name>.cpp as fuzz_<name>; its corpus is an ordinary test.
function(corvane_fuzz name)
    add_executable(fuzz_${name} ${name}.cpp)
    target_link_libraries(fuzz_${name} PRIVATE corvane_core corvane_test_support
                                               corvane_ending_clock)
    corvane_warnings(fuzz_${name})
    if(CORVANE_LIBFUZZER)
        target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
        if(NOT TARGET fuzz_targets)
            add_custom_target(fuzz_targets)
        endif()
        add_dependencies(fuzz_targets fuzz_${name})
    else()
        target_sources(fuzz_${name} PRIVATE replay_main.cpp)
        add_test(NAME corpus.${name}
            COMMAND fuzz_${name} ${CMAKE_CURRENT_SOURCE_DIR}/corpus/${name}
            WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR})
        set_tests_properties(corpus.${name} PROPERTIES LABELS corpus TIMEOUT 300)
    endif()
endfunction()
