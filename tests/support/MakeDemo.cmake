# Checks what `make demo` would build, without building it: the Makefile's
# dry run names only the demo targets, and CMake's target graph of each holds
# no test target or test library.
file(REMOVE_RECURSE ${WORK})
execute_process(COMMAND make -n demo BUILD=${WORK}/build WORKING_DIRECTORY ${SOURCE}
  OUTPUT_VARIABLE dry RESULT_VARIABLE rc)
string(REPLACE ";" "," dry "${dry}")
string(REGEX MATCHALL "cmake --build [^\n]*" builds "${dry}")
list(LENGTH builds count)
if(NOT rc EQUAL 0 OR NOT count EQUAL 1 OR NOT builds MATCHES "--target ([a-z0-9 -]+) >")
  message(FATAL_ERROR "make -n demo should run one cmake --build with --target:\n${dry}")
endif()
string(REGEX MATCH "--target ([a-z0-9 -]+) >" _ "${builds}")
string(REPLACE " " ";" targets "${CMAKE_MATCH_1}")
execute_process(COMMAND ${CMAKE_COMMAND} -S ${SOURCE} -B ${WORK}/graph --graphviz=${WORK}/targets.dot
  OUTPUT_QUIET RESULT_VARIABLE rc)
foreach(target ${targets})
  if(NOT EXISTS ${WORK}/targets.dot.${target})
    message(FATAL_ERROR "no target graph for ${target} (configure: ${rc})")
  endif()
  file(READ ${WORK}/targets.dot.${target} graph)
  if(graph MATCHES "[Gg][Tt]est|Tests|benchmark|z2d-")
    message(FATAL_ERROR "${target} depends on test code:\n${graph}")
  endif()
endforeach()
message(STATUS "make demo builds ${targets}")
