# zephrin2d-import: a .tmx map and Tiled's own JSON export of it, and an
# Aseprite sheet in its hash and array forms, give the same files.
set(import_data ${CMAKE_CURRENT_SOURCE_DIR}/data/import)
set(import_out ${CMAKE_CURRENT_BINARY_DIR}/import)
find_program(TILED_PROGRAM tiled)
z2d_program(import zephrin2d-import)
if(TARGET zephrin2d-check)
  z2d_program(check zephrin2d-check)
endif()
set(import_check)
if(TARGET zephrin2d-check)
  set(import_check -DCHECK=${check})
endif()
add_test(NAME import-tmx-and-tiled-json
  COMMAND ${CMAKE_COMMAND} -DTOOL=${import} -DTILED=${TILED_PROGRAM} ${import_check}
    -DFIRST=${import_data}/map.tmx -DNAME=map -DEXPORT_TO=${import_out}/map-exported.json
    -DWORKDIR=${import_out}/out/map -P ${CMAKE_CURRENT_SOURCE_DIR}/support/ImportSame.cmake)
add_test(NAME import-aseprite-hash-and-array
  COMMAND ${CMAKE_COMMAND} -DTOOL=${import} ${import_check}
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
set(one_tile "<layer name=\"l\" width=\"1\" height=\"1\"><data encoding=\"csv\">1</data></layer>")
string(REPEAT "<layer name=\"l\" width=\"1\" height=\"1\"><data encoding=\"csv\">0</data></layer>" 65 many_layers)
string(REPEAT "n" 4097 long_name)
string(REPEAT "{${frame}}, " 40 forty_frames)
set(json_map "{\"type\": \"map\", \"orientation\": \"orthogonal\", \"tilewidth\": 8, \"tileheight\": 8")
set(cases
  "rotated|{\"frames\": [{${frame}, \"rotated\": true}], ${sheet}}}|rotated frames are not supported"
  "no-image|{\"frames\": [{${frame}}], \"meta\": {\"image\": \"gone.png\"}}|the sheet image .*gone.png. is not there"
  "tag-outside|{\"frames\": [{${frame}}], ${sheet}, \"frameTags\": [{\"name\": \"run\", \"from\": 0, \"to\": 4}]}}|tag .run. covers frames 0 to 4, outside"
  "infinite.tmx|${tmx} infinite=\"1\"/>|infinite maps are not supported"
  "iso.tmx|<map orientation=\"isometric\"/>|isometric maps are not supported"
  "hex.json|{\"type\": \"map\", \"orientation\": \"hexagonal\", \"layers\": [], \"tilesets\": []}|hexagonal maps are not supported"
  "collection.tmx|${tmx}>${tileset}<tile id=\"0\"><image source=\"a.png\"/></tile></tileset></map>|image-collection tilesets are not supported"
  "meta-not-object|{\"frames\": [{${frame}}], \"meta\": 1}|\"meta\" must be an object"
  "frame-x-2-31|{\"frames\": [{\"frame\": {\"x\": 2147483645, \"y\": 0, \"w\": 8, \"h\": 8}}], ${sheet}}}|\"x\" must lie between -1048576 and 1048576"
  "source-x-2-31|{\"frames\": [{${frame}, \"spriteSourceSize\": {\"x\": 2147483645, \"y\": 0, \"w\": 8, \"h\": 8}}], ${sheet}}}|\"x\" must lie between"
  "sheet-30000|{\"frames\": [{${frame}}], \"meta\": {\"image\": \"${import_data}/huge.png\"}}|is 30000x30000 pixels: an image side may be at most 4096"
  "long-tag|{\"frames\": [{${frame}}], ${sheet}, \"frameTags\": [{\"name\": \"${long_name}\", \"from\": 0, \"to\": 0}]}}|\"name\".s length may be at most 4096"
  "repeats|{\"frames\": [${forty_frames}{${frame}}], ${sheet}, \"frameTags\": [{\"name\": \"a\", \"from\": 0, \"to\": 40, \"repeat\": \"1000\"}, {\"name\": \"b\", \"from\": 0, \"to\": 40, \"repeat\": 1000}]}}|the number of cels of all animations may be at most 65535"
  "spacing.tmx|${tmx}><tileset firstgid=\"1\" name=\"s\" tilewidth=\"8\" tileheight=\"8\" spacing=\"2147483640\" columns=\"2\" tilecount=\"4\"><image source=\"${import_data}/tiles.png\"/></tileset>${one_tile}</map>|\"spacing\" must be an integer from 0 to 4096"
  "jpeg.tmx|${tmx}><tileset firstgid=\"1\" name=\"t\" tilewidth=\"8\" tileheight=\"8\"><image source=\"${import_data}/tiles.jpg\"/></tileset>${one_tile}</map>|tiles.jpg. is a JPEG image: only PNG images are read"
  "map-2048.tmx|<map orientation=\"orthogonal\" width=\"2048\" height=\"2048\" tilewidth=\"8\" tileheight=\"8\"/>|\"width\" must be an integer from 1 to 1024"
  "cells.json|${json_map}, \"width\": 1024, \"height\": 1024, \"tilesets\": [], \"layers\": []}|the map's width x height may be at most 262144"
  "layers.tmx|${tmx}>${many_layers}</map>|the number of tile layers may be at most 64"
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
    COMMAND ${CMAKE_COMMAND} -DTOOL=${import} -DINPUT=${bad}/${name} -DOUT=${bad}/out-${name}
      "-DEXPECT=${message}" -P ${CMAKE_CURRENT_SOURCE_DIR}/support/ImportRefused.cmake)
  set_tests_properties(import-refuses-${name} PROPERTIES LABELS tools)
endforeach()

# The imported example: both imports, then the program that draws them.
foreach(input meadow.tmx knight.json)
  add_test(NAME import-example-${input}
    COMMAND zephrin2d-import ${PROJECT_SOURCE_DIR}/examples/imported/${input} -o ${import_out}/out/example)
  set_tests_properties(import-example-${input} PROPERTIES LABELS examples FIXTURES_SETUP imported-example)
endforeach()
add_test(NAME imported-example-runs
  COMMAND zephrin2d-imported ${import_out}/out/example/ 60 ${import_out}/imported.png)
set_tests_properties(imported-example-runs PROPERTIES LABELS examples FIXTURES_REQUIRED imported-example
  PASS_REGULAR_EXPRESSION "wrote .*imported.png \\(320x240\\)" FAIL_REGULAR_EXPRESSION "ASSERT ")
