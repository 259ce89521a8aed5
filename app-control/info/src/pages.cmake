# The battery, regulatory and open-source licence pages.
target_sources(quillset-info-core PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/StInfoBatteryModel.cpp
    ${CMAKE_CURRENT_LIST_DIR}/StInfoBatteryMenuItem.cpp
    ${CMAKE_CURRENT_LIST_DIR}/StInfoBatteryViewController.cpp
    ${CMAKE_CURRENT_LIST_DIR}/StInfoRegulatoryInfoViewController.cpp
    ${CMAKE_CURRENT_LIST_DIR}/StInfoOpenSrcLicenseViewController.cpp
)
