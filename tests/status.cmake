# The device status page: its model against the stand-ins, and the page end to end.
quillset_efl_test(status_model_test StInfoStatusModel_test.cpp)
quillset_efl_test(status_rows_test StInfoStatusMenuItem_test.cpp)
target_include_directories(status_rows_test PRIVATE ${CMAKE_SOURCE_DIR}/platform/src)
target_include_directories(status_model_test PRIVATE ${CMAKE_SOURCE_DIR}/platform/src)
# The device daemon answers on a watch the test brings up.
add_dependencies(status_model_test quillset-sim quillset-simd quillset-profiles)

quillset_e2e_test(status_page_e2e_test StatusPage_e2e_test.cpp TIMEOUT 180)
