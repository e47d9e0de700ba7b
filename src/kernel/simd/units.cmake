# Flags of the units that are compiled for one instruction set. Multiply-adds are fused only where the
# kernels say so, so that every compiler gives the same results.
set(NEQUAR_UNIT_DIR ${PROJECT_SOURCE_DIR}/src/kernel/simd)
set(NEQUAR_UNIT_OPTIONS -ffp-contract=off -fno-math-errno -fno-trapping-math)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  list(APPEND NEQUAR_UNIT_OPTIONS -fno-version-loops-for-strides)
endif()

set_source_files_properties(${NEQUAR_UNIT_DIR}/baseline.cpp PROPERTIES
  COMPILE_OPTIONS "${NEQUAR_UNIT_OPTIONS}")
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64|amd64")
  set_source_files_properties(${NEQUAR_UNIT_DIR}/avx2.cpp PROPERTIES
    COMPILE_OPTIONS "${NEQUAR_UNIT_OPTIONS};-mavx2;-mfma")
  set_source_files_properties(${NEQUAR_UNIT_DIR}/avx512.cpp PROPERTIES
    COMPILE_OPTIONS "${NEQUAR_UNIT_OPTIONS};-mavx2;-mfma;-mavx512f;-mavx512dq;-mavx512vl;-mavx512bw")
endif()
