# Message catalogue checks (python3, standard library only).
add_test(NAME po_catalogue_complete
         COMMAND python3 ${CMAKE_SOURCE_DIR}/tests/po_check.py ${CMAKE_SOURCE_DIR})
# The checkers themselves, on small catalogues they are made to refuse.
find_program(QUILLSET_PO_MSGFMT msgfmt)
add_test(NAME po_checks_refuse_faults
         COMMAND python3 ${CMAKE_SOURCE_DIR}/tests/po_check_test.py ${CMAKE_SOURCE_DIR}
                 ${QUILLSET_PO_MSGFMT})
