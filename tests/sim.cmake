# The simulated watch (state store, profiles, usage database, quillset-sim and quillset-simd)
# in one program, so that its tests cost one link, and the platform stand-ins backed by it.
# Every test gets its own state directory.
add_executable(sim_test sim_settings_store_test.cpp sim_profile_test.cpp sim_cli_test.cpp)
target_link_libraries(sim_test PRIVATE GTest::gtest_main quillset-simstate)
# The programs are run, and find the shipped profiles, beside the tests.
add_dependencies(sim_test quillset-sim quillset-simd quillset-profiles)
gtest_discover_tests(sim_test DISCOVERY_TIMEOUT 30 PROPERTIES TIMEOUT 120)

# Stand-ins run with Ecore initialised by the main() of sim_platform_support.cpp.
function(quillset_platform_test name)
    add_executable(${name} ${ARGN} sim_platform_support.cpp)
    target_link_libraries(${name} PRIVATE GTest::gtest quillset-simstate quillset-platform)
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/platform/src)
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 30 PROPERTIES TIMEOUT 120)
endfunction()

quillset_platform_test(platform_vconf_test platform_vconf_test.cpp)
add_dependencies(platform_vconf_test quillset-sim)
quillset_platform_test(platform_info_test platform_info_test.cpp)
# Usage records and launches through the services daemon, which the tests start, slow down and
# restart.
quillset_platform_test(platform_services_test platform_services_test.cpp)
add_dependencies(platform_services_test quillset-sim quillset-simd quillset-profiles)

# The documented profile schema against quillset-sim's own checks (Debian's python3-jsonschema).
add_test(NAME profile_schema_agrees_with_the_loader
         COMMAND ${QUILLSET_SYSTEM_PYTHON} ${CMAKE_SOURCE_DIR}/tests/profile_schema_test.py
                 ${CMAKE_SOURCE_DIR} $<TARGET_FILE:quillset-sim>)
