# The fault matrix: the application on a simulated watch with each platform call failing.
quillset_e2e_test(fault_matrix_e2e_test FaultMatrix_e2e_test.cpp TIMEOUT 180)

# Load and lifecycle; QUILLSET_SOAK=1 (make soak) runs them at full size.
quillset_efl_test(pages_soak_test PagesSoak_test.cpp)
target_include_directories(pages_soak_test PRIVATE ${CMAKE_SOURCE_DIR}/platform/src ${CMAKE_SOURCE_DIR}/drive)
quillset_e2e_test(settings_soak_test SettingsSoak_test.cpp TIMEOUT 600)
target_sources(settings_soak_test PRIVATE support/DrivenWatch.cpp)
quillset_platform_test(platform_vconf_load_test platform_vconf_load_test.cpp)

# Bad input end to end.
quillset_e2e_test(bad_input_e2e_test BadInput_e2e_test.cpp TIMEOUT 180)

# Security end to end.
quillset_e2e_test(security_e2e_test Security_e2e_test.cpp TIMEOUT 180)
# The watch's files and bus against other users, with find and dbus-send.
add_test(NAME state_is_closed_to_other_users
         COMMAND ${CMAKE_SOURCE_DIR}/tests/state_security_test.sh ${CMAKE_BINARY_DIR})
set_tests_properties(state_is_closed_to_other_users PROPERTIES TIMEOUT 120)
