# Runs the harness (HARNESS, with the arguments ARGS) and passes only when it fails, its output
# holds the violation EXPECTED (a regular expression), and no other rule is named. EMULATOR, if
# set, is the command line that runs a cross-built harness.
separate_arguments(args UNIX_COMMAND "${ARGS}")
separate_arguments(emulator UNIX_COMMAND "${EMULATOR}")
execute_process(COMMAND ${emulator} ${HARNESS} ${args}
                RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE errors)
message("${output}")
if(status EQUAL 0)
    message(FATAL_ERROR "the harness passed; expected a violation matching: ${EXPECTED}")
endif()
if(NOT output MATCHES "${EXPECTED}")
    message(FATAL_ERROR "no violation matching: ${EXPECTED}\n${errors}")
endif()
string(REGEX MATCH "rule: [a-z-]+" expected_rule "${EXPECTED}")
string(REGEX MATCHALL "rule: [a-z-]+" rules "${output}")
list(REMOVE_DUPLICATES rules)
if(NOT rules STREQUAL expected_rule)
    message(FATAL_ERROR "expected only '${expected_rule}' to be broken, got: ${rules}\n${errors}")
endif()
