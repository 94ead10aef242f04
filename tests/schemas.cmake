# The content schemas: every example validates, every broken file is refused
# for its reason. Debian's jsonschema belongs to the system interpreter, which
# a python3 earlier on PATH (a virtual environment) may not see.
find_program(Z2D_SYSTEM_PYTHON python3 PATHS /usr/bin NO_DEFAULT_PATH)
add_test(NAME content-schemas
  COMMAND ${Z2D_SYSTEM_PYTHON} ${CMAKE_CURRENT_SOURCE_DIR}/support/validate_schemas.py
    ${PROJECT_SOURCE_DIR}/docs/schemas ${PROJECT_SOURCE_DIR}/examples ${CMAKE_CURRENT_SOURCE_DIR}/data/broken-schema)
set_tests_properties(content-schemas PROPERTIES LABELS tools)
