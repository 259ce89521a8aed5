# The benchmark runs end to end and reports every figure (one cheap round; no timing judged).
add_test(NAME bench_reports_every_figure
         COMMAND python3 ${CMAKE_SOURCE_DIR}/tests/bench_check.py ${CMAKE_SOURCE_DIR}
                 ${CMAKE_BINARY_DIR})
set_tests_properties(bench_reports_every_figure PROPERTIES TIMEOUT 300 RUN_SERIAL TRUE)
