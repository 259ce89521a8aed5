# Faults, bad input, security and load.
quillset_platform_test(platform_vconf_load_test platform_vconf_load_test.cpp)
