# The library: every source below src/ is compiled once into an object library, from which come
#   nequar_algebra          the shared library that users link (hidden visibility, public classes exported)
#   nequar_algebra_static   the same objects for tests and the benchmark, which reach the inner layers
file(GLOB_RECURSE NEQUAR_SOURCES CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/*.cpp)

add_library(nequar_objects OBJECT ${NEQUAR_SOURCES})
set_target_properties(nequar_objects PROPERTIES POSITION_INDEPENDENT_CODE ON)
target_compile_definitions(nequar_objects PRIVATE NEQUAR_BUILDING_LIBRARY)
target_include_directories(nequar_objects PRIVATE ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/src)
target_link_libraries(nequar_objects PRIVATE nequar_options)

# Kernel units that are compiled for one instruction set. They are reached only through the table of
# kernels, after the CPU has been asked.
include(${PROJECT_SOURCE_DIR}/src/kernel/simd/units.cmake OPTIONAL)

function(nequar_public_interface target)
  target_compile_features(${target} PUBLIC cxx_std_20)
  target_include_directories(${target} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
endfunction()

add_library(nequar_algebra SHARED $<TARGET_OBJECTS:nequar_objects>)
add_library(nequar::algebra ALIAS nequar_algebra)
# Before 1.0 a minor version may change the interface.
set(NEQUAR_SOVERSION ${PROJECT_VERSION_MAJOR})
if(PROJECT_VERSION_MAJOR EQUAL 0)
  set(NEQUAR_SOVERSION 0.${PROJECT_VERSION_MINOR})
endif()
set_target_properties(nequar_algebra PROPERTIES
  VERSION ${PROJECT_VERSION} SOVERSION ${NEQUAR_SOVERSION} EXPORT_NAME algebra)
nequar_public_interface(nequar_algebra)
target_link_libraries(nequar_algebra PRIVATE $<BUILD_INTERFACE:nequar_options>)

add_library(nequar_algebra_static STATIC EXCLUDE_FROM_ALL $<TARGET_OBJECTS:nequar_objects>)
nequar_public_interface(nequar_algebra_static)
target_include_directories(nequar_algebra_static PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>)
target_link_libraries(nequar_algebra_static PRIVATE $<BUILD_INTERFACE:nequar_options>)
