# The pipeline example: loose pictures, packed, the content checked, an actor
# compiled against the sheet, the frame drawn; the frame must be the one the guide shows.
set(pipeline_out ${CMAKE_CURRENT_BINARY_DIR}/pipeline)
foreach(tool pack check dset render)
  z2d_program(${tool} zephrin2d-${tool})
endforeach()
add_test(NAME example-pipeline
  COMMAND ${CMAKE_COMMAND} -E env
    "PATH=${pack_DIR}:${check_DIR}:${dset_DIR}:${render_DIR}:$ENV{PATH}"
    sh ${PROJECT_SOURCE_DIR}/examples/pipeline/pipeline.sh ${pipeline_out})
set_tests_properties(example-pipeline PROPERTIES LABELS tools FIXTURES_SETUP pipeline FAIL_REGULAR_EXPRESSION "ASSERT")
add_test(NAME example-pipeline-picture
  COMMAND z2d-imgdiff ${pipeline_out}/pipeline.png ${PROJECT_SOURCE_DIR}/docs/images/pipeline.png 2 0)
set_tests_properties(example-pipeline-picture PROPERTIES LABELS tools FIXTURES_REQUIRED pipeline)
