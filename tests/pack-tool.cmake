# zephrin2d-pack's command line.
add_test(NAME pack-tool
  COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/pack_tool_test.sh $<TARGET_FILE:zephrin2d-pack> ${CMAKE_CURRENT_SOURCE_DIR}/data/png
    ${CMAKE_CURRENT_BINARY_DIR}/pack-tool)
set_tests_properties(pack-tool PROPERTIES LABELS tools)

