# The software, security-platform, battery, regulatory and licence pages, and the home key.
quillset_efl_test(pages_test Pages_test.cpp)
target_include_directories(pages_test PRIVATE ${CMAKE_SOURCE_DIR}/platform/src)

# End to end on a simulated watch.
add_executable(pages_e2e_test Pages_e2e_test.cpp support/SimulatedWatch.cpp)
target_link_libraries(pages_e2e_test PRIVATE GTest::gtest GTest::gtest_main quillset-simstate)
add_executable(home_key_probe HomeKeyProbe.cpp)
target_link_libraries(home_key_probe PRIVATE quillset-common quillset-platform)
add_dependencies(pages_e2e_test home_key_probe quillset-drive quillset-sim quillset-simd
    quillset-locale quillset-profiles)
gtest_discover_tests(pages_e2e_test DISCOVERY_TIMEOUT 30 PROPERTIES TIMEOUT 120)
