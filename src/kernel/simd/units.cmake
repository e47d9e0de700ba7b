# Flags of the units that are compiled for one instruction set. Multiply-adds are fused only where the
# kernels say so, so that every compiler gives the same results. Two 8-byte stores read back by one
# 16-byte load stall; so nobody may make vectors out of the arguments of small problems.
set(NEQUAR_UNIT_DIR ${PROJECT_SOURCE_DIR}/src/kernel/simd)
set(NEQUAR_UNIT_OPTIONS -ffp-contract=off -fno-math-errno -fno-trapping-math
    -fno-tree-slp-vectorize)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  list(APPEND NEQUAR_UNIT_OPTIONS -fno-version-loops-for-strides)
endif()
# Register tiles are unrolled loops over small arrays: a check of every constant index finds nothing
# that the address sanitizer would not, and checks in line make the units compile ten times slower.
if(NEQUAR_SANITIZE MATCHES "undefined")
  list(APPEND NEQUAR_UNIT_OPTIONS -fno-sanitize=bounds,alignment,null,object-size,pointer-overflow)
endif()
if(NEQUAR_SANITIZE MATCHES "address" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  list(APPEND NEQUAR_UNIT_OPTIONS --param=asan-instrumentation-with-call-threshold=64)
endif()

set_source_files_properties(${NEQUAR_UNIT_DIR}/../level23.cpp ${NEQUAR_UNIT_DIR}/../small.cpp PROPERTIES
  COMPILE_OPTIONS "-fno-tree-slp-vectorize")
set_source_files_properties(${NEQUAR_UNIT_DIR}/baseline.cpp PROPERTIES
  COMPILE_OPTIONS "${NEQUAR_UNIT_OPTIONS}")
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64|amd64")
  set_source_files_properties(${NEQUAR_UNIT_DIR}/avx2.cpp PROPERTIES
    COMPILE_OPTIONS "${NEQUAR_UNIT_OPTIONS};-mavx2;-mfma")
  set_source_files_properties(${NEQUAR_UNIT_DIR}/avx512.cpp PROPERTIES
    COMPILE_OPTIONS "${NEQUAR_UNIT_OPTIONS};-mavx2;-mfma;-mavx512f;-mavx512dq;-mavx512vl;-mavx512bw")
endif()
