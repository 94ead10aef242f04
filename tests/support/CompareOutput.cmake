# Runs TOOL with the argument FILE in WORKDIR and compares its standard
# output byte for byte with the file EXPECTED.
#   cmake -DTOOL=... -DFILE=... -DWORKDIR=... -DEXPECTED=... -P CompareOutput.cmake
execute_process(COMMAND ${TOOL} ${FILE} WORKING_DIRECTORY ${WORKDIR}
  OUTPUT_VARIABLE out RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "${TOOL} ${FILE} exited with ${rc}")
endif()
file(READ ${EXPECTED} expected)
if(NOT out STREQUAL expected)
  message(FATAL_ERROR "output of ${TOOL} ${FILE} differs from ${EXPECTED}:\n${out}")
endif()
