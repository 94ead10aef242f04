# zephrin2d-check: the mistakes table of docs/check.md, and the examples clean.
find_package(Python3 COMPONENTS Interpreter)
if(Python3_Interpreter_FOUND)
  add_test(NAME check-table
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/check_table.py $<TARGET_FILE:zephrin2d-check>
      ${PROJECT_SOURCE_DIR}/docs/check.md ${CMAKE_CURRENT_SOURCE_DIR}/data/check)
  set_tests_properties(check-table PROPERTIES LABELS tools)
endif()
file(GLOB_RECURSE example_json CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/examples/*.json)
add_test(NAME check-examples
  COMMAND sh -c "out=$(\"$0\" \"$@\"); s=$?; echo \"$out\"; [ $s -eq 0 ] && [ $(echo \"$out\" | wc -l) -eq 1 ] && echo \"$out\" | grep -q ', 0 errors, 0 warnings$'"
    $<TARGET_FILE:zephrin2d-check> --sheet examples/art/sheet.json --costume examples/demo/kid-costume.json
    --art-path examples/demo ${example_json}
  WORKING_DIRECTORY ${PROJECT_SOURCE_DIR})
set_tests_properties(check-examples PROPERTIES LABELS tools)
