# nequar_symbols: renews the list of the functions that the shared library shows, which a test compares
# with what it does show.
set(NEQUAR_LIST_SYMBOLS bash ${PROJECT_SOURCE_DIR}/abi/list_symbols.sh $<TARGET_FILE:nequar_algebra>
  ${PROJECT_SOURCE_DIR}/include)
add_custom_target(nequar_symbols
  COMMAND ${NEQUAR_LIST_SYMBOLS} ${PROJECT_SOURCE_DIR}/abi/nequar_algebra.symbols
  DEPENDS nequar_algebra COMMENT "Writing abi/nequar_algebra.symbols" VERBATIM)
