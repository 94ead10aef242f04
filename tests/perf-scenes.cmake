# The benchmark scenes (bench/) in the library tests: counts of scenes (a)
# and (b), the batched and immediate pictures, actors' cel changes.
target_sources(Zephrin2DTests PRIVATE ${PROJECT_SOURCE_DIR}/bench/PeerScenes.cpp
  ${PROJECT_SOURCE_DIR}/bench/PeerZephrin.cpp)
target_include_directories(Zephrin2DTests PRIVATE ${PROJECT_SOURCE_DIR}/bench)

# The same pictures against SDL2's renderer, only where libsdl2-dev is
# installed (`make bench` installs it; `make test` does not need it).
pkg_check_modules(SDL2 QUIET IMPORTED_TARGET sdl2)
if(SDL2_FOUND)
  add_executable(Zephrin2DPeerCheckTest ${PROJECT_SOURCE_DIR}/bench/PeerCheckMain.cpp
    ${PROJECT_SOURCE_DIR}/bench/PeerScenes.cpp ${PROJECT_SOURCE_DIR}/bench/PeerZephrin.cpp
    ${PROJECT_SOURCE_DIR}/bench/PeerSdl.cpp ${PROJECT_SOURCE_DIR}/bench/PeerFloor.cpp)
  target_include_directories(Zephrin2DPeerCheckTest PRIVATE ${PROJECT_SOURCE_DIR}/bench)
  target_link_libraries(Zephrin2DPeerCheckTest PRIVATE Zephrin2D ImageIO PkgConfig::SDL2)
  add_test(NAME PeerPictures.ZephrinImmediateSdl2 COMMAND Zephrin2DPeerCheckTest)
  set_tests_properties(PeerPictures.ZephrinImmediateSdl2 PROPERTIES LABELS library SKIP_RETURN_CODE 77
    ENVIRONMENT "ZEPHRIN2D_DEBUG_LEVEL=1")
endif()
