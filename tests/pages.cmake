# The software, security-platform, battery, regulatory and licence pages, and the home key.
quillset_efl_test(pages_test Pages_test.cpp)
target_include_directories(pages_test PRIVATE ${CMAKE_SOURCE_DIR}/platform/src
                                              ${CMAKE_SOURCE_DIR}/drive)

# End to end on a simulated watch.
quillset_e2e_test(pages_e2e_test Pages_e2e_test.cpp)
add_executable(home_key_probe HomeKeyProbe.cpp)
target_link_libraries(home_key_probe PRIVATE quillset-common quillset-platform)
add_dependencies(pages_e2e_test home_key_probe)

# Every screen's texts against their parts, in every language.
quillset_efl_test(text_fit_test TextFit_test.cpp)
target_include_directories(text_fit_test PRIVATE ${CMAKE_SOURCE_DIR}/platform/src)
# The languages it walks are the compiled catalogues, listed when its tests are discovered.
add_dependencies(text_fit_test quillset-locale)
