# nequar_reference: the reference as HTML in build/NAME/reference/html, made by Doxygen where it is
# installed. A warning, such as an operation without a comment, is an error.
find_program(NEQUAR_DOXYGEN doxygen)
mark_as_advanced(NEQUAR_DOXYGEN)

set(NEQUAR_REFERENCE_DIR ${PROJECT_BINARY_DIR}/reference)
configure_file(${PROJECT_SOURCE_DIR}/docs/reference/Doxyfile.in ${NEQUAR_REFERENCE_DIR}/Doxyfile @ONLY)
set(NEQUAR_MAKE_REFERENCE ${CMAKE_COMMAND} -DINCLUDE_DIR=${PROJECT_SOURCE_DIR}/include
  -DREFERENCE_DIR=${NEQUAR_REFERENCE_DIR} -DDOXYGEN=${NEQUAR_DOXYGEN}
  -P ${PROJECT_SOURCE_DIR}/docs/reference/make_reference.cmake)
if(NEQUAR_DOXYGEN)
  add_custom_target(nequar_reference COMMAND ${NEQUAR_MAKE_REFERENCE}
    COMMENT "Writing the reference to ${NEQUAR_REFERENCE_DIR}/html/index.html" VERBATIM)
endif()
