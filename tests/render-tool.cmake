# zephrin2d-render: the shapes scene is shared with the golden-image test.
target_include_directories(Zephrin2DTests PRIVATE ${PROJECT_SOURCE_DIR}/tools/zephrin2d-render)

set(render_out ${CMAKE_CURRENT_BINARY_DIR}/render-tool)
z2d_program(render zephrin2d-render)
add_test(NAME render-tool-shapes
  COMMAND sh -c "rm -rf \"$1\" && mkdir -p \"$1\" && \"$0\" --demo shapes --frames 3 --out \"$1/shapes.png\" --stats > \"$1/stats.txt\" && test -s \"$1/shapes.png\" && test $(grep -c '^{\"frame\":[0-9]*,\"drawCalls\":[0-9]*,\"uploadBytes\":[0-9]*,\"cpuMicros\":[0-9]*}$' \"$1/stats.txt\") -eq 3"
    ${render} ${render_out}/shapes)
add_test(NAME render-tool-every-frame
  COMMAND sh -c "rm -rf \"$1\" && \"$0\" --frames 2 --size 64x48 --out \"$1/\" && test -s \"$1/frame-0000.png\" && test -s \"$1/frame-0001.png\""
    ${render} ${render_out}/frames)
add_test(NAME render-tool-bad-options
  COMMAND sh -c "for a in '--size 0x10' '--frames x' '--dt' '--demo none' '--nope' 'a.json b.json'; do \"$0\" $a >/dev/null 2>&1; s=$?; [ $s -eq 2 ] || { echo \"$a: exit $s\"; exit 1; }; done"
    ${render})
# Actor files alone are drawn (not a demo).
add_test(NAME render-tool-actor-alone
  COMMAND sh -c "\"$0\" --actor \"$1/demo/hero.json\" && ! \"$0\" --actor \"$1/demo/no-such-actor.json\""
    ${render} ${PROJECT_SOURCE_DIR}/examples)
set_tests_properties(render-tool-shapes render-tool-every-frame render-tool-bad-options render-tool-actor-alone
  PROPERTIES LABELS tools)
