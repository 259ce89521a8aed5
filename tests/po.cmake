# Message catalogue checks (Debian's python3 with python3-polib).
add_test(NAME po_catalogue_complete
         COMMAND ${QUILLSET_SYSTEM_PYTHON} ${CMAKE_SOURCE_DIR}/tests/po_check.py
                 ${CMAKE_SOURCE_DIR})
# The checkers themselves, on small catalogues they are made to refuse.
add_test(NAME po_checks_refuse_faults
         COMMAND ${QUILLSET_SYSTEM_PYTHON} ${CMAKE_SOURCE_DIR}/tests/po_check_test.py
                 ${CMAKE_SOURCE_DIR} ${MSGFMT})
