# The device status page: its model against the stand-ins, and the page end to end.
quillset_efl_test(status_model_test StInfoStatusModel_test.cpp)
quillset_efl_test(status_rows_test StInfoStatusMenuItem_test.cpp)
target_include_directories(status_rows_test PRIVATE ${CMAKE_SOURCE_DIR}/platform/src)
target_include_directories(status_model_test PRIVATE ${CMAKE_SOURCE_DIR}/platform/src)

quillset_e2e_test(status_page_e2e_test StatusPage_e2e_test.cpp TIMEOUT 180)

add_executable(status_profile_test StatusProfile_test.cpp)
target_link_libraries(status_profile_test PRIVATE GTest::gtest GTest::gtest_main quillset-simstate)
gtest_discover_tests(status_profile_test DISCOVERY_TIMEOUT 30)
