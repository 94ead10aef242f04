# make demo builds the render tool alone, and nothing it depends on is test code.
add_test(NAME make-demo-builds-only-the-renderer
  COMMAND ${CMAKE_COMMAND} -DSOURCE=${PROJECT_SOURCE_DIR} -DWORK=${CMAKE_CURRENT_BINARY_DIR}/make-demo
    -P ${CMAKE_CURRENT_SOURCE_DIR}/support/MakeDemo.cmake)
set_tests_properties(make-demo-builds-only-the-renderer PROPERTIES LABELS tools)
