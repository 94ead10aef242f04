# zephrin2d-render on a scene file: it loads, plays and writes its frames and a contact sheet.
set(scene_out ${CMAKE_CURRENT_BINARY_DIR}/render-scene)
z2d_program(render zephrin2d-render)
add_test(NAME render-scene-file
  COMMAND ${CMAKE_COMMAND} -E env ZEPHRIN2D_DEBUG_LEVEL=1
    ${render} ${PROJECT_SOURCE_DIR}/examples/demo/scene.json
    --sheet ${PROJECT_SOURCE_DIR}/examples/art/sheet.json
    --costume ${PROJECT_SOURCE_DIR}/examples/demo/kid-costume.json
    --frames 24 --out ${scene_out}/last.png --contact-sheet ${scene_out}/contact.png --stats)
set_tests_properties(render-scene-file PROPERTIES LABELS tools
  PASS_REGULAR_EXPRESSION "\"frame\":23,\"drawCalls\":[1-9]" FAIL_REGULAR_EXPRESSION "ASSERT")
add_test(NAME render-scene-missing-file
  COMMAND zephrin2d-render ${scene_out}/no-such-scene.json --frames 2)
set_tests_properties(render-scene-missing-file PROPERTIES LABELS tools
  PASS_REGULAR_EXPRESSION "no-such-scene.json: cannot be read")
add_test(NAME render-meadow-contact-sheet
  COMMAND zephrin2d-render --demo meadow --frames 25 --every 8 --contact-sheet ${scene_out}/meadow.png)
set_tests_properties(render-meadow-contact-sheet PROPERTIES LABELS tools)
