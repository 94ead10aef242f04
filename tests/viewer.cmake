# The viewer in a real window under Xvfb, against the render tool's frame of the same scene.
add_executable(z2d-imgdiff ${CMAKE_CURRENT_SOURCE_DIR}/tools/imgdiff.cpp)
target_link_libraries(z2d-imgdiff PRIVATE ImageIO)
if(NOT TARGET zephrin2d-view)
  return()
endif()
z2d_program(view zephrin2d-view)
z2d_program(render zephrin2d-render)
z2d_program(imgdiff z2d-imgdiff)
add_test(NAME viewer-window-matches-render
  COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/viewer_test.sh ${view} ${render}
    ${imgdiff} ${CMAKE_CURRENT_SOURCE_DIR}/data/scenes/still.json ${PROJECT_SOURCE_DIR}/examples/art/
    ${CMAKE_CURRENT_BINARY_DIR}/viewer)
set_tests_properties(viewer-window-matches-render PROPERTIES LABELS tools SKIP_RETURN_CODE 77 TIMEOUT 120)

# The viewer's keys, sent to its window as a user would press them.
add_executable(z2d-xwin ${CMAKE_CURRENT_SOURCE_DIR}/tools/xwin.cpp)
target_link_libraries(z2d-xwin PRIVATE PkgConfig::X11)
z2d_program(xwin z2d-xwin)
add_test(NAME viewer-keys
  COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/viewer_keys_test.sh ${view} ${render}
    ${imgdiff} ${xwin} ${CMAKE_CURRENT_SOURCE_DIR}/data/scenes/blink.json
    ${PROJECT_SOURCE_DIR}/examples/art/ ${CMAKE_CURRENT_BINARY_DIR}/viewer-keys)
set_tests_properties(viewer-keys PROPERTIES LABELS tools SKIP_RETURN_CODE 77 TIMEOUT 120)
