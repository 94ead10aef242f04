# The tools on the example content.
z2d_program(dump zephrin2d-dump)

# zephrin2d-dump prints the documents the expected files hold.
foreach(pair "hero.json:hero-actor.xml" "kid-costume.json:kid-costume.xml")
  string(REPLACE ":" ";" pair ${pair})
  list(GET pair 0 input)
  list(GET pair 1 expected)
  add_test(NAME dump-${expected}
    COMMAND ${CMAKE_COMMAND} -DTOOL=${dump} -DFILE=examples/demo/${input}
      -DWORKDIR=${PROJECT_SOURCE_DIR} -DEXPECTED=${CMAKE_CURRENT_SOURCE_DIR}/data/expected/${expected}
      -P ${CMAKE_CURRENT_SOURCE_DIR}/support/CompareOutput.cmake)
  set_tests_properties(dump-${expected} PROPERTIES LABELS tools)
endforeach()

# zephrin2d-dset --verify on every actor and costume file of examples/. Image
# names are relative to the file, and the dataset must find the same images,
# so each example directory is copied into the build tree and compiled there.
# An actor beside a costume file is verified dressed from that costume.
file(GLOB example_json CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/examples/*/*.json)
foreach(json ${example_json})
  # Actor and costume files are objects; scene files are arrays.
  file(READ ${json} text)
  string(STRIP "${text}" text)
  string(SUBSTRING "${text}" 0 1 first)
  string(FIND "${text}" "\"Animation\"" actor)
  string(FIND "${text}" "\"LODList\"" costume)
  if(NOT first STREQUAL "{" OR (actor EQUAL -1 AND costume EQUAL -1))
    continue()
  endif()
  get_filename_component(dir ${json} DIRECTORY)
  get_filename_component(group ${dir} NAME)
  # The pipeline example's actor needs the sheet that pipeline.cmake packs first.
  if(group STREQUAL "pipeline")
    continue()
  endif()
  get_filename_component(name ${json} NAME_WE)
  set(copy ${CMAKE_CURRENT_BINARY_DIR}/content/${group})
  if(NOT TEST copy-example-${group})
    add_test(NAME copy-example-${group} COMMAND ${CMAKE_COMMAND} -E copy_directory ${dir} ${copy})
    set_tests_properties(copy-example-${group} PROPERTIES FIXTURES_SETUP example-${group} LABELS tools)
  endif()
  set(costume_args)
  file(GLOB costumes ${dir}/*costume*.json)
  if(NOT actor EQUAL -1 AND costumes)
    list(GET costumes 0 costume_file)
    get_filename_component(costume_name ${costume_file} NAME)
    set(costume_args --costume ${copy}/${costume_name})
  endif()
  add_test(NAME dset-verify-${group}-${name}
    COMMAND zephrin2d-dset --verify ${costume_args} ${copy}/${name}.json -o ${copy}/${name}-compiled)
  set_tests_properties(dset-verify-${group}-${name} PROPERTIES FIXTURES_REQUIRED example-${group}
    LABELS tools PASS_REGULAR_EXPRESSION "${name}-compiled.dsetBin: verified" FAIL_REGULAR_EXPRESSION "ASSERT")
endforeach()
