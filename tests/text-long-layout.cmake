# A megabyte of text and rectangles of INT_MAX: the quadratic layout this
# guards against took minutes; linear layout takes about a second.
add_test(NAME text-long-layout
  COMMAND Zephrin2DTests --gtest_filter=TextTest.MegabyteTextAndExtremeRectangles)
set_tests_properties(text-long-layout PROPERTIES LABELS library TIMEOUT 30 ENVIRONMENT "ZEPHRIN2D_DEBUG_LEVEL=1")
