# Debian packages, one for each component: `cpack --config build/release/CPackConfig.cmake`.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME nequar-algebra)
set(CPACK_PACKAGE_VENDOR "nequar_algebra developers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "numerical linear algebra in C++")
set(CPACK_PACKAGE_CONTACT "nequar_algebra developers <developers@nequar.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL library development)
if(NEQUAR_BUILD_PROGRAM)
  list(APPEND CPACK_COMPONENTS_ALL program)
endif()

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(NEQUAR_LIBRARY_PACKAGE libnequar-algebra${NEQUAR_SOVERSION})

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME ${NEQUAR_LIBRARY_PACKAGE})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION
"Dense, packed, band, Toeplitz, Vandermonde and sparse matrices in double and
single precision; LU, Cholesky, QR and its kin, singular values, eigenvalues;
solvers, inverses, ranks and subspaces; sample statistics. One library that
depends on the C++ standard library alone and chooses its kernels for the CPU
on which it runs.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libnequar-algebra-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${NEQUAR_LIBRARY_PACKAGE} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "g++, pkg-config, cmake")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
"What building programs with the library takes: the headers, in which each
operation is documented, and what CMake and pkg-config need to find it.")

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME nequar)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION math)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_DEPENDS "${NEQUAR_LIBRARY_PACKAGE} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_PROGRAM_DESCRIPTION
"The command line: nequar solves systems, decomposes matrices and analyses
samples that stand in Matrix Market and CSV files, and says how far the result
can be trusted.")

# What else the packages depend on is read from their binaries, where Debian's tools for that are
# installed (dpkg-dev, file).
find_program(NEQUAR_SHLIBDEPS dpkg-shlibdeps)
find_program(NEQUAR_FILE file)
mark_as_advanced(NEQUAR_SHLIBDEPS NEQUAR_FILE)
if(NEQUAR_SHLIBDEPS AND NEQUAR_FILE)
  set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PROGRAM_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
else()
  set(CPACK_DEBIAN_LIBRARY_PACKAGE_DEPENDS "libc6, libstdc++6, libgcc-s1")
  string(APPEND CPACK_DEBIAN_PROGRAM_PACKAGE_DEPENDS ", libfmt9, libc6, libstdc++6, libgcc-s1")
endif()
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
