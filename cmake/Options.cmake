# What every target of ours is compiled with: warnings, sanitizers.
add_library(nequar_options INTERFACE)
target_compile_features(nequar_options INTERFACE cxx_std_20)
target_compile_options(nequar_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
  -Woverloaded-virtual -Wcast-qual -Wold-style-cast -Wundef)
if(NEQUAR_WARNINGS_AS_ERRORS)
  target_compile_options(nequar_options INTERFACE -Werror)
endif()
if(NEQUAR_SANITIZE)
  target_compile_options(nequar_options INTERFACE
    -fsanitize=${NEQUAR_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g)
  target_link_options(nequar_options INTERFACE -fsanitize=${NEQUAR_SANITIZE})
endif()
if(NEQUAR_BUILD_FUZZERS)
  target_compile_options(nequar_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
