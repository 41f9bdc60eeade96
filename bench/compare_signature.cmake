# Runs PROGRAM and compares its standard output, whole, with the file EXPECTED.
execute_process(COMMAND ${PROGRAM} OUTPUT_VARIABLE found RESULT_VARIABLE status ERROR_QUIET)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "the signature program ended with status ${status}")
endif()
file(READ ${EXPECTED} expected)
if(NOT found STREQUAL expected)
    message(FATAL_ERROR "the tree has changed; expected:\n${expected}\nfound:\n${found}")
endif()
