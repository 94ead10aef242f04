# The getting-started guide's programs: each is built, run, and its picture
# compared with the one the guide shows; the guide shows each program whole.
set(gs_source ${PROJECT_SOURCE_DIR}/examples/getting-started)
z2d_program(imgdiff z2d-imgdiff)
z2d_program(render zephrin2d-render)
set(gs_steps 01-hello:hello.png 02-sprite:sprite.png 03-atlas:atlas.png 04-actor:actor.png
  05-text:text.png 06-points:points.png 07-scene:scene-4.png 08-play:play.png)
foreach(entry ${gs_steps})
  string(REPLACE ":" ";" entry ${entry})
  list(GET entry 0 step)
  list(GET entry 1 picture)
  add_executable(getting-started-${step} ${gs_source}/${step}/main.cpp)
  target_link_libraries(getting-started-${step} PRIVATE Zephrin2D)
  z2d_program(program getting-started-${step})
  add_test(NAME getting-started-${step}
    COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/getting_started_test.sh ${program}
      ${gs_source}/art ${CMAKE_CURRENT_BINARY_DIR}/getting-started/${step} ${picture}
      ${PROJECT_SOURCE_DIR}/docs/images/${step}.png ${imgdiff})
  list(APPEND gs_tests getting-started-${step})
endforeach()
if(ZEPHRIN2D_WITH_X11)
  z2d_program(program getting-started-01-hello)
  add_test(NAME getting-started-01-hello-window
    COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/getting_started_test.sh ${program}
      ${gs_source}/art ${CMAKE_CURRENT_BINARY_DIR}/getting-started/01-hello-window hello.png
      ${PROJECT_SOURCE_DIR}/docs/images/01-hello.png ${imgdiff} --window)
  list(APPEND gs_tests getting-started-01-hello-window)
endif()
set_tests_properties(getting-started-04-actor PROPERTIES PASS_REGULAR_EXPRESSION "walk -> wave\nwave -> walk\nwalk -> wave\n.*picture matches")
add_test(NAME readme-shows-the-demo
  COMMAND sh -c "\"$0\" --demo meadow --frames 90 --out \"$1\" && \"$2\" \"$1\" \"$3\" 8 200"
    ${render} ${CMAKE_CURRENT_BINARY_DIR}/readme-demo.png ${imgdiff}
    ${PROJECT_SOURCE_DIR}/docs/images/demo.png)
add_test(NAME getting-started-guide-shows-the-code
  COMMAND ${CMAKE_COMMAND} -DGUIDE=${PROJECT_SOURCE_DIR}/docs/getting-started.md -DSOURCES=${gs_source}
    -P ${CMAKE_CURRENT_SOURCE_DIR}/support/GuideShowsCode.cmake)
set_tests_properties(${gs_tests} getting-started-guide-shows-the-code readme-shows-the-demo PROPERTIES
  LABELS examples SKIP_RETURN_CODE 77 FAIL_REGULAR_EXPRESSION "ASSERT ")

# The play step's keys in a window: the right arrow walks the hero, Escape quits.
if(ZEPHRIN2D_WITH_X11)
  z2d_program(program getting-started-08-play)
  z2d_program(xwin z2d-xwin)
  add_test(NAME getting-started-08-play-keys
    COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/play_keys_test.sh ${program} ${gs_source}/art
      ${xwin} ${CMAKE_CURRENT_BINARY_DIR}/getting-started/08-play-keys)
  set_tests_properties(getting-started-08-play-keys PROPERTIES LABELS examples SKIP_RETURN_CODE 77 TIMEOUT 120)
endif()
