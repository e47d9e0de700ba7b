# cmake -DINCLUDE_DIR=... -DREFERENCE_DIR=... -DDOXYGEN=... -P make_reference.cmake
# Writes the page of all public names, the template behind each and the header that declares it, to
# REFERENCE_DIR/public_names.md, and the reference to REFERENCE_DIR/html.
cmake_minimum_required(VERSION 3.25)
file(GLOB_RECURSE headers RELATIVE ${INCLUDE_DIR} ${INCLUDE_DIR}/*.h)
list(SORT headers)
set(page "# All public names {#public_names}\n\n| name | is | header |\n|------|----|--------|\n")
foreach(header IN LISTS headers)
  file(STRINGS ${INCLUDE_DIR}/${header} lines REGEX "^(using|class NEQUAR_API) L?CNq[A-Za-z_]+")
  foreach(line IN LISTS lines)
    if(line MATCHES "^using ([A-Za-z_]+) = (nequar::[A-Za-z]+)<(.*)>")
      set(name ${CMAKE_MATCH_1})
      set(template ${CMAKE_MATCH_2})
      string(REPLACE "nequar::" "" arguments "${CMAKE_MATCH_3}")
      string(APPEND page "| `${name}` | ${template} of ${arguments} | `${header}` |\n")
    elseif(line MATCHES "^class NEQUAR_API ([A-Za-z_]+)")
      string(APPEND page "| ${CMAKE_MATCH_1} | itself | `${header}` |\n")
    endif()
  endforeach()
endforeach()
file(WRITE ${REFERENCE_DIR}/public_names.md "${page}")

execute_process(COMMAND ${DOXYGEN} ${REFERENCE_DIR}/Doxyfile COMMAND_ERROR_IS_FATAL ANY)
