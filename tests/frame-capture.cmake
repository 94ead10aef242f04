# A frame that cannot be written (its directory is a file) is refused with its name.
add_test(NAME frame-capture-unwritable-file
  COMMAND zephrin2d-render --demo shapes --frames 1 --out ${CMAKE_CURRENT_BINARY_DIR}/CTestTestfile.cmake/frame.png)
set_tests_properties(frame-capture-unwritable-file PROPERTIES LABELS platform
  PASS_REGULAR_EXPRESSION "zephrin2d-render: [^\n]*CTestTestfile.cmake: cannot make the folder")
