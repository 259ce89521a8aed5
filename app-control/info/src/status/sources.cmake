# The device status page and its model.
target_sources(quillset-info-core PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/StInfoStatusModel.cpp
    ${CMAKE_CURRENT_LIST_DIR}/StInfoStatusRecordReader.cpp
    ${CMAKE_CURRENT_LIST_DIR}/StInfoStatusMenuItem.cpp
    ${CMAKE_CURRENT_LIST_DIR}/StInfoStatusViewController.cpp
)
target_include_directories(quillset-info-core PUBLIC ${CMAKE_CURRENT_LIST_DIR})
