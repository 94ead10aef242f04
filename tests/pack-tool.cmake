# zephrin2d-pack's command line.
z2d_program(pack zephrin2d-pack)
z2d_program(dset zephrin2d-dset)
z2d_program(dump zephrin2d-dump)
z2d_program(import zephrin2d-import)
add_test(NAME pack-tool
  COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/pack_tool_test.sh ${pack} ${CMAKE_CURRENT_SOURCE_DIR}/data/png
    ${CMAKE_CURRENT_BINARY_DIR}/pack-tool)
set_tests_properties(pack-tool PROPERTIES LABELS tools)

# zephrin2d-dset's image lookup and zephrin2d-dump on datasets.
add_test(NAME dataset-tools-images-and-dump
  COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/dataset_tools_test.sh ${dset} ${dump}
    ${PROJECT_SOURCE_DIR}/examples ${CMAKE_CURRENT_BINARY_DIR}/dataset-tools)
set_tests_properties(dataset-tools-images-and-dump PROPERTIES LABELS tools)

# Tool outputs under faults: old set or new, never a mix.
add_test(NAME output-sets-under-faults
  COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/output_faults_test.sh ${pack} ${dset}
    ${import} ${CMAKE_CURRENT_SOURCE_DIR}/data/png ${PROJECT_SOURCE_DIR}/examples
    ${CMAKE_CURRENT_SOURCE_DIR}/data/import ${CMAKE_CURRENT_BINARY_DIR}/output-faults)
set_tests_properties(output-sets-under-faults PROPERTIES LABELS tools)
