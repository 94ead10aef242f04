# A build for a device without X11: the platform library does not need libX11
# (the whole suite then draws headless in it).
if(NOT ZEPHRIN2D_WITH_X11)
  add_test(NAME platform-without-x11
    COMMAND sh -c "\"$0\" -d \"$1\" | grep NEEDED; ! \"$0\" -d \"$1\" | grep -q 'libX11'"
      ${CMAKE_READELF} $<TARGET_FILE:Zephrin2DPlatform>)
  set_tests_properties(platform-without-x11 PROPERTIES LABELS platform)
endif()
