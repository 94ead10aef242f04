# zephrin2d-import: a .tmx map and Tiled's own JSON export of it, and an
# Aseprite sheet in its hash and array forms, give the same files.
set(import_data ${CMAKE_CURRENT_SOURCE_DIR}/data/import)
set(import_out ${CMAKE_CURRENT_BINARY_DIR}/import)
find_program(TILED_PROGRAM tiled)
set(import_check)
if(TARGET zephrin2d-check)
  set(import_check -DCHECK=$<TARGET_FILE:zephrin2d-check>)
endif()
add_test(NAME import-tmx-and-tiled-json
  COMMAND ${CMAKE_COMMAND} -DTOOL=$<TARGET_FILE:zephrin2d-import> -DTILED=${TILED_PROGRAM} ${import_check}
    -DFIRST=${import_data}/map.tmx -DNAME=map -DEXPORT_TO=${import_out}/map-exported.json
    -DWORKDIR=${import_out}/out/map -P ${CMAKE_CURRENT_SOURCE_DIR}/support/ImportSame.cmake)
add_test(NAME import-aseprite-hash-and-array
  COMMAND ${CMAKE_COMMAND} -DTOOL=$<TARGET_FILE:zephrin2d-import> ${import_check}
    -DFIRST=${import_data}/hero-hash.json -DSECOND=${import_data}/hero-array.json -DNAME=hero
    -DWORKDIR=${import_out}/out/hero -P ${CMAKE_CURRENT_SOURCE_DIR}/support/ImportSame.cmake)
set_tests_properties(import-tmx-and-tiled-json import-aseprite-hash-and-array PROPERTIES LABELS tools
  FIXTURES_SETUP imported-files)
# Every scene, actor and sheet file the imports wrote matches its schema.
find_program(Z2D_SYSTEM_PYTHON python3 PATHS /usr/bin NO_DEFAULT_PATH)
add_test(NAME import-outputs-match-schemas
  COMMAND ${Z2D_SYSTEM_PYTHON} ${CMAKE_CURRENT_SOURCE_DIR}/support/validate_schemas.py
    ${PROJECT_SOURCE_DIR}/docs/schemas ${import_out}/out ${CMAKE_CURRENT_SOURCE_DIR}/data/broken-schema)
set_tests_properties(import-outputs-match-schemas PROPERTIES LABELS tools FIXTURES_REQUIRED "imported-files;imported-example")

# Refused input: the message names what is wrong, exit 1, nothing written.
set(bad ${import_out}/bad)
file(MAKE_DIRECTORY ${bad})
set(frame "\"frame\": {\"x\": 0, \"y\": 0, \"w\": 8, \"h\": 8}")
set(sheet "\"meta\": {\"image\": \"${import_data}/hero.png\"")
set(tmx "<map orientation=\"orthogonal\" width=\"1\" height=\"1\" tilewidth=\"8\" tileheight=\"8\"")
set(tileset "<tileset firstgid=\"1\" name=\"t\" tilewidth=\"8\" tileheight=\"8\">")
set(cases
  "rotated|{\"frames\": [{${frame}, \"rotated\": true}], ${sheet}}}|rotated frames are not supported"
  "no-image|{\"frames\": [{${frame}}], \"meta\": {\"image\": \"gone.png\"}}|the sheet image .*gone.png. is not there"
  "tag-outside|{\"frames\": [{${frame}}], ${sheet}, \"frameTags\": [{\"name\": \"run\", \"from\": 0, \"to\": 4}]}}|tag .run. covers frames 0 to 4, outside"
  "infinite.tmx|${tmx} infinite=\"1\"/>|infinite maps are not supported"
  "iso.tmx|<map orientation=\"isometric\"/>|isometric maps are not supported"
  "hex.json|{\"type\": \"map\", \"orientation\": \"hexagonal\", \"layers\": [], \"tilesets\": []}|hexagonal maps are not supported"
  "collection.tmx|${tmx}>${tileset}<tile id=\"0\"><image source=\"a.png\"/></tile></tileset></map>|image-collection tilesets are not supported"
  "chunks.json|{\"type\": \"map\", \"orientation\": \"orthogonal\", \"width\": 1, \"height\": 1, \"tilewidth\": 8, \"tileheight\": 8, \"tilesets\": [], \"layers\": [{\"type\": \"tilelayer\", \"chunks\": []}]}|infinite maps are not supported"
)
foreach(c ${cases})
  string(REPLACE "|" ";" c "${c}")
  list(GET c 0 name)
  list(GET c 1 text)
  list(GET c 2 message)
  if(NOT name MATCHES "\\.")
    set(name ${name}.json)
  endif()
  file(WRITE ${bad}/${name} "${text}")
  add_test(NAME import-refuses-${name}
    COMMAND ${CMAKE_COMMAND} -DTOOL=$<TARGET_FILE:zephrin2d-import> -DINPUT=${bad}/${name} -DOUT=${bad}/out-${name}
      "-DEXPECT=${message}" -P ${CMAKE_CURRENT_SOURCE_DIR}/support/ImportRefused.cmake)
  set_tests_properties(import-refuses-${name} PROPERTIES LABELS tools)
endforeach()

# The imported example: both imports, then the program that draws them.
add_subdirectory(${PROJECT_SOURCE_DIR}/examples/imported ${CMAKE_BINARY_DIR}/examples/imported)
foreach(input meadow.tmx knight.json)
  add_test(NAME import-example-${input}
    COMMAND zephrin2d-import ${PROJECT_SOURCE_DIR}/examples/imported/${input} -o ${import_out}/out/example)
  set_tests_properties(import-example-${input} PROPERTIES LABELS examples FIXTURES_SETUP imported-example)
endforeach()
add_test(NAME imported-example-runs
  COMMAND zephrin2d-imported ${import_out}/out/example/ 60 ${import_out}/imported.png)
set_tests_properties(imported-example-runs PROPERTIES LABELS examples FIXTURES_REQUIRED imported-example
  PASS_REGULAR_EXPRESSION "wrote .*imported.png \\(320x240\\)" FAIL_REGULAR_EXPRESSION "ASSERT ")
