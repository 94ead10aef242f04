# An installed tree, moved elsewhere, runs its tools and builds and runs examples/minimal.
add_test(NAME install-minimal-example
  COMMAND sh ${CMAKE_CURRENT_SOURCE_DIR}/install_test.sh ${CMAKE_BINARY_DIR} ${PROJECT_SOURCE_DIR}
    ${CMAKE_CURRENT_BINARY_DIR}/install-test ${CMAKE_TOOLCHAIN_FILE} ${CMAKE_CROSSCOMPILING_EMULATOR})
set_tests_properties(install-minimal-example PROPERTIES LABELS install TIMEOUT 600)
