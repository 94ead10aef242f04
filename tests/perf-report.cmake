# bench/perf_report.py: the goals table and its failures, on canned counts.
find_package(Python3 COMPONENTS Interpreter)
if(Python3_Interpreter_FOUND)
  add_test(NAME perf-report
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/perf_report_test.py ${PROJECT_SOURCE_DIR}/bench/perf_report.py)
endif()
