# A working program says nothing on standard error; ZEPHRIN2D_DEBUG_LEVEL still makes it talk.
z2d_program(render zephrin2d-render)
add_test(NAME working-program-is-quiet
  COMMAND sh -c "set -e; rm -rf \"$1\"; mkdir -p \"$1\"; env -u ZEPHRIN2D_DEBUG_LEVEL \"$0\" --demo shapes --frames 3 --out \"$1/a.png\" 2> \"$1/err\"; [ ! -s \"$1/err\" ] || { cat \"$1/err\"; exit 1; }; ZEPHRIN2D_DEBUG_LEVEL=2 \"$0\" --demo shapes --frames 1 --out \"$1/b.png\" 2> \"$1/err\"; grep -qx 'CGraphics2D::init()' \"$1/err\""
    ${render} ${CMAKE_CURRENT_BINARY_DIR}/quiet-output)
set_tests_properties(working-program-is-quiet PROPERTIES LABELS tools)
