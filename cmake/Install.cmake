# What an installation holds: the shared library, the public headers, the examples, and the two ways
# in which other projects find the library,
#   find_package(nequar_algebra CONFIG)  ->  nequar::algebra
#   pkg-config nequar_algebra
# Both are relocatable. The program's own rules stand in tools/nequar.
#
# Three components: `library` is what running programs need, `development` what building them needs,
# `program` the command line.
include(CMakePackageConfigHelpers)

set(NEQUAR_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/nequar_algebra)

install(TARGETS nequar_algebra EXPORT nequar_algebra
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/nequar_algebra
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development FILES_MATCHING PATTERN "*.h")
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples
  DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development)
install(EXPORT nequar_algebra NAMESPACE nequar:: FILE nequar_algebraTargets.cmake
  DESTINATION ${NEQUAR_PACKAGE_DIR} COMPONENT development)

configure_package_config_file(cmake/nequar_algebraConfig.cmake.in
  ${PROJECT_BINARY_DIR}/nequar_algebraConfig.cmake INSTALL_DESTINATION ${NEQUAR_PACKAGE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/nequar_algebraConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/nequar_algebraConfig.cmake
  ${PROJECT_BINARY_DIR}/nequar_algebraConfigVersion.cmake
  DESTINATION ${NEQUAR_PACKAGE_DIR} COMPONENT development)

# pkg-config finds the prefix from where its file lies, so that a moved installation still works.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  set(NEQUAR_PKGCONFIG_PREFIX "${CMAKE_INSTALL_PREFIX}")
else()
  file(RELATIVE_PATH NEQUAR_UP "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
  string(REGEX REPLACE "/$" "" NEQUAR_UP "${NEQUAR_UP}")
  set(NEQUAR_PKGCONFIG_PREFIX "\${pcfiledir}/${NEQUAR_UP}")
endif()
cmake_path(APPEND NEQUAR_PKGCONFIG_LIBDIR "\${prefix}" "${CMAKE_INSTALL_LIBDIR}")
cmake_path(APPEND NEQUAR_PKGCONFIG_INCLUDEDIR "\${prefix}" "${CMAKE_INSTALL_INCLUDEDIR}")
configure_file(cmake/nequar_algebra.pc.in ${PROJECT_BINARY_DIR}/nequar_algebra.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/nequar_algebra.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
