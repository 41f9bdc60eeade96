# Sanitizers for the whole build: a finding ends the program, so a test that meets one fails.
if(CORVANE_SANITIZE)
    add_compile_options(-fsanitize=${CORVANE_SANITIZE} -fno-sanitize-recover=all
                        -fno-omit-frame-pointer -g1)
    add_link_options(-fsanitize=${CORVANE_SANITIZE} -fno-sanitize-recover=all)
    # Bounds of std::array and friends are checked too.
    add_compile_definitions(_GLIBCXX_ASSERTIONS)
endif()
if(CORVANE_LIBFUZZER)
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()
