# The About list and every page it opens, in the list as a person sees them.
quillset_efl_test(pages_test Pages_test.cpp)
target_include_directories(pages_test PRIVATE ${CMAKE_SOURCE_DIR}/platform/src
                                              ${CMAKE_SOURCE_DIR}/drive)
# Its device daemon answers on a watch the test brings up.
add_dependencies(pages_test quillset-sim quillset-simd quillset-profiles)

# End to end on a simulated watch.
quillset_e2e_test(pages_e2e_test Pages_e2e_test.cpp)

# Every screen's texts against their parts, in every language.
quillset_efl_test(text_fit_test TextFit_test.cpp)
target_include_directories(text_fit_test PRIVATE ${CMAKE_SOURCE_DIR}/platform/src)
# The languages it walks are the compiled catalogues, listed when its tests are discovered.
add_dependencies(text_fit_test quillset-locale)
