# Stand-ins read by the software information page. The CSC approval version is served with the
# rest of the CSC family in csc.cpp.
target_sources(quillset-platform PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/package_manager.cpp
)
