# The demo program (examples/demo), built with the tests and run once: it
# must load its content and write a frame.
target_include_directories(Zephrin2DTests PRIVATE ${PROJECT_SOURCE_DIR}/examples/demo)

add_test(NAME demo-example-runs
  COMMAND zephrin2d-demo examples/demo/ 40 ${CMAKE_CURRENT_BINARY_DIR}/demo-frame-40.png
  WORKING_DIRECTORY ${PROJECT_SOURCE_DIR})
set_tests_properties(demo-example-runs PROPERTIES LABELS examples
  PASS_REGULAR_EXPRESSION "wrote .*demo-frame-40.png \\(320x240\\)"
  FAIL_REGULAR_EXPRESSION "ASSERT ")
