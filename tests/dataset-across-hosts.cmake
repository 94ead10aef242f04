# A cross build: datasets compiled here and on the target are the same file,
# and the target loads the one compiled here (tools of the host build).
if(CMAKE_CROSSCOMPILING)
  set(ZEPHRIN2D_HOST_BUILD_DIR ${PROJECT_SOURCE_DIR}/build CACHE PATH "Host build whose tools the cross build is compared with")
  z2d_program(dset zephrin2d-dset)
  z2d_program(dump zephrin2d-dump)
  add_test(NAME dataset-across-hosts
    COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/dataset_across_hosts_test.sh ${ZEPHRIN2D_HOST_BUILD_DIR} ${dset} ${dump}
      ${PROJECT_SOURCE_DIR}/examples ${CMAKE_CURRENT_BINARY_DIR}/dataset-across-hosts)
  set_tests_properties(dataset-across-hosts PROPERTIES LABELS tools)
endif()
