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
elseif(NEQUAR_SANITIZE MATCHES "address")
  list(APPEND NEQUAR_UNIT_OPTIONS -mllvm -asan-instrumentation-with-call-threshold=64)
endif()
# Kernels work on what they are given, and share nothing: with the sanitizer of threads they would
# take many minutes to compile.
if(NEQUAR_SANITIZE MATCHES "thread")
  list(APPEND NEQUAR_UNIT_OPTIONS -fno-sanitize=thread -Wno-maybe-uninitialized)
endif()
# Which branch of a tile was taken tells a fuzzer nothing.
if(NEQUAR_BUILD_FUZZERS)
  list(APPEND NEQUAR_UNIT_OPTIONS -fno-sanitize=fuzzer-no-link)
endif()

set_source_files_properties(${NEQUAR_UNIT_DIR}/baseline.cpp PROPERTIES
  COMPILE_OPTIONS "${NEQUAR_UNIT_OPTIONS}")
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64|amd64")
  # Nor may the faces copy a block of operands two words at a time: tuned for a CPU where unaligned
  # vectors are slow, they write it where the kernel reads it.
  foreach(FACE bands level1 level23 small)
    set_source_files_properties(${NEQUAR_UNIT_DIR}/../${FACE}.cpp PROPERTIES
      COMPILE_OPTIONS "-fno-tree-slp-vectorize;-mtune=core2")
  endforeach()
  set_source_files_properties(${NEQUAR_UNIT_DIR}/avx2.cpp PROPERTIES
    COMPILE_OPTIONS "${NEQUAR_UNIT_OPTIONS};-mavx2;-mfma")
  set_source_files_properties(${NEQUAR_UNIT_DIR}/avx512.cpp PROPERTIES
    COMPILE_OPTIONS "${NEQUAR_UNIT_OPTIONS};-mavx2;-mfma;-mavx512f;-mavx512dq;-mavx512vl;-mavx512bw")
endif()
