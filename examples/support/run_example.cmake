# Runs an example in a fresh folder and compares what it prints with a file that stands beside it,
# and what it writes with the files of the same names there. Used by ../CMakeLists.txt:
#   cmake -DPROGRAM= -DARGUMENTS= -DFOLDER= -DEXPECTED= -DWRITES= -DCOMPARE= -DWORK= -P run_example.cmake
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
execute_process(COMMAND ${PROGRAM} ${ARGUMENTS} WORKING_DIRECTORY ${WORK}
  OUTPUT_FILE ${WORK}/output.txt ERROR_VARIABLE errors RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} ended with status ${status}\n${errors}")
endif()

set(failed "")
macro(compare expected actual)
  execute_process(COMMAND ${COMPARE} ${expected} ${actual} ${ARGN} RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    list(APPEND failed ${expected})
  endif()
endmacro()
compare(${FOLDER}/${EXPECTED} ${WORK}/output.txt)
foreach(name ${WRITES})
  # What is written for the eye, pictures and charts, has whole numbers that are rounded, too.
  compare(${FOLDER}/${name} ${WORK}/${name} --whole-numbers-within 1)
endforeach()
if(failed)
  message(FATAL_ERROR "differs from ${failed}")
endif()
