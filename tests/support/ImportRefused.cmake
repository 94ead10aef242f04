# The importer refuses INPUT: exit 1, a compiler-style error matching EXPECT, no output directory.
execute_process(COMMAND ${TOOL} ${INPUT} -o ${OUT} RESULT_VARIABLE status ERROR_VARIABLE err)
if(NOT status EQUAL 1 OR NOT err MATCHES "^[^\n]+:[0-9]+:[0-9]+: error: [^\n]*${EXPECT}" OR EXISTS ${OUT})
  message(FATAL_ERROR "expected exit 1 with \"${EXPECT}\" and nothing written, got ${status}:\n${err}")
endif()
