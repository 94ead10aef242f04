# zephrin2d-check: the mistakes table of docs/check.md, and the examples clean.
z2d_program(check zephrin2d-check)
z2d_program(render zephrin2d-render)
z2d_program(dset zephrin2d-dset)
find_package(Python3 COMPONENTS Interpreter)
if(Python3_Interpreter_FOUND)
  add_test(NAME check-table
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/check_table.py ${check}
      ${PROJECT_SOURCE_DIR}/docs/check.md ${CMAKE_CURRENT_SOURCE_DIR}/data/check)
  set_tests_properties(check-table PROPERTIES LABELS tools)
endif()

# Each example directory with the sheet and costume its scenes are drawn with.
set(check_runs
  "demo:--sheet examples/art/sheet.json --costume examples/demo/kid-costume.json --art-path examples/demo"
  "art:"
  "formats:--sheet examples/formats/sheet.json --costume examples/formats/costume.json")
foreach(run ${check_runs})
  string(FIND "${run}" ":" colon)
  string(SUBSTRING "${run}" 0 ${colon} dir)
  math(EXPR colon "${colon} + 1")
  string(SUBSTRING "${run}" ${colon} -1 options)
  separate_arguments(options)
  file(GLOB files CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}
    ${PROJECT_SOURCE_DIR}/examples/${dir}/*.json ${PROJECT_SOURCE_DIR}/examples/${dir}/*.dsetBin)
  if(NOT files)
    continue()
  endif()
  add_test(NAME check-examples-${dir}
    COMMAND sh -c "out=$(\"$0\" \"$@\"); s=$?; echo \"$out\"; [ $s -eq 0 ] && [ $(echo \"$out\" | wc -l) -eq 1 ] && echo \"$out\" | grep -q ', 0 errors, 0 warnings$'"
      ${check} ${options} ${files}
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR})
  set_tests_properties(check-examples-${dir} PROPERTIES LABELS tools)
endforeach()

# The render tool fails loudly: a scene with a problem still draws but exits 1
# with a one-line summary; a clean one exits 0 and prints nothing.
foreach(case "render-missing.json:" "postion.json:" "sheet-names.json:--sheet sheet.json" "render-clean.json:")
  string(FIND "${case}" ":" colon)
  string(SUBSTRING "${case}" 0 ${colon} scene)
  math(EXPR colon "${colon} + 1")
  string(SUBSTRING "${case}" ${colon} -1 options)
  separate_arguments(options)
  if(scene STREQUAL "render-clean.json")
    set(expect "[ $s -eq 0 ] && [ ! -s \"$out\" ]")
  else()
    set(expect "[ $s -eq 1 ] && [ $(wc -l < \"$out\") -eq 1 ] && grep -q \"^zephrin2d-render: ${scene}: [0-9]* problems\\? while loading (first: .*); run zephrin2d-check .*${scene} for each with its place$\" \"$out\"")
  endif()
  add_test(NAME render-loud-${scene}
    COMMAND sh -c "out=\"$1\"; shift; \"$0\" \"$@\" --frames 1 > \"$out\" 2>&1; s=$?; cat \"$out\"; ${expect}"
      ${render} ${CMAKE_CURRENT_BINARY_DIR}/render-loud-${scene}.txt ${options} ${scene}
    WORKING_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR}/data/check)
  set_tests_properties(render-loud-${scene} PROPERTIES LABELS tools ENVIRONMENT ZEPHRIN2D_DEBUG_LEVEL=1)
endforeach()

# check, dset and render agree on every file of the broken-content corpus.
if(Python3_Interpreter_FOUND)
  add_test(NAME tools-agree
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/agreement.py ${check}
      ${dset} ${render} ${CMAKE_CURRENT_SOURCE_DIR}/data
      ${CMAKE_CURRENT_BINARY_DIR}/agree)
  set_tests_properties(tools-agree PROPERTIES LABELS tools)
endif()
