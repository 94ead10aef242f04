# A floating-point value does not convert to tFixed by the integer constructor.
set(Z2D_FIXED_COMPILE ${CMAKE_CXX_COMPILER} -std=c++17 -fsyntax-only
  -I${PROJECT_SOURCE_DIR}/Zephrin2D/Src/math ${CMAKE_CURRENT_SOURCE_DIR}/compile/fixed_conversions.cpp)
add_test(NAME fixed-explicit-conversions-compile COMMAND ${Z2D_FIXED_COMPILE})
foreach(form FROM_DOUBLE FROM_FLOAT)
  add_test(NAME fixed-${form}-does-not-compile COMMAND ${Z2D_FIXED_COMPILE} -D${form})
  set_tests_properties(fixed-${form}-does-not-compile PROPERTIES LABELS compile
    PASS_REGULAR_EXPRESSION "use of deleted function")
endforeach()
set_tests_properties(fixed-explicit-conversions-compile PROPERTIES LABELS compile)
