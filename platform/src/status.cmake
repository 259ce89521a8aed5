# Stand-ins behind the device status page: telephony, eSIM, Bluetooth, Wi-Fi and CSC.
target_sources(quillset-platform PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/telephony.cpp
    ${CMAKE_CURRENT_LIST_DIR}/esim.cpp
    ${CMAKE_CURRENT_LIST_DIR}/bluetooth.cpp
    ${CMAKE_CURRENT_LIST_DIR}/wifi_manager.cpp
    ${CMAKE_CURRENT_LIST_DIR}/csc.cpp
)
