# Runs an example, which must succeed, and compares its output with the text beside its source, if any.
# Input: PROGRAM, EXPECTED
execute_process(COMMAND ${PROGRAM} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
message("${output}")
if(EXISTS ${EXPECTED})
  file(READ ${EXPECTED} expected)
  if(NOT output STREQUAL expected)
    message(FATAL_ERROR "The output differs from ${EXPECTED}:\n${expected}")
  endif()
endif()
