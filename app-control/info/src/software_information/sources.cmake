# The software information page and the security-platform versions page it opens.
target_sources(quillset-info-core PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/StInfoSwModel.cpp
    ${CMAKE_CURRENT_LIST_DIR}/StInfoSwMenuItem.cpp
    ${CMAKE_CURRENT_LIST_DIR}/StInfoSwViewController.cpp
    ${CMAKE_CURRENT_LIST_DIR}/tessid/StInfoTessidModel.cpp
    ${CMAKE_CURRENT_LIST_DIR}/tessid/StInfoTessidMenuItem.cpp
    ${CMAKE_CURRENT_LIST_DIR}/tessid/StInfoTessidViewController.cpp
)
target_include_directories(quillset-info-core PUBLIC ${CMAKE_CURRENT_LIST_DIR})
