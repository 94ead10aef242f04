# A short soak run: the soak scene for 5,000 frames; lists, entries, texture
# cache entries and memory must stay flat after the warm-up, and GL must not
# report an error. `make soak` runs the long one.
# Not under the emulator: its 5,000 frames would outlast the cross suite many
# times over (docs/porting.md).
if(TARGET zephrin2d-soak AND NOT CMAKE_CROSSCOMPILING)
  set(Z2D_SOAK_ARGS --frames 5000 --every 10 --check --csv ${CMAKE_CURRENT_BINARY_DIR}/soak-short.csv)
  if(ZEPHRIN2D_SANITIZE)
    # AddressSanitizer holds freed memory in quarantine (256 MiB) and takes
    # over malloc: only the counts say something there.
    list(APPEND Z2D_SOAK_ARGS --resident-slack-kib 1048576)
  endif()
  add_test(NAME Soak.Short COMMAND zephrin2d-soak ${Z2D_SOAK_ARGS})
  set_tests_properties(Soak.Short PROPERTIES LABELS soak TIMEOUT 1200 ENVIRONMENT "ZEPHRIN2D_DEBUG_LEVEL=1")
endif()
