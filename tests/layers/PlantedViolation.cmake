# Proves that the include rule bites: copies the system's folders to WORK, appends one include
# line to one of its files, and succeeds only when IncludeRule.cmake then fails naming that file
# and that include.
#
#   cmake -DROOT=<source tree> -DWORK=<scratch folder> -DFILE=<file under the system>
#         -DINCLUDE=<included name> -P PlantedViolation.cmake
cmake_minimum_required(VERSION 3.25)

foreach(required ROOT WORK FILE INCLUDE)
  if(NOT ${required})
    message(FATAL_ERROR "${required} is not set")
  endif()
endforeach()

file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK}/util)
file(COPY ${ROOT}/common ${ROOT}/src DESTINATION ${WORK})
file(COPY ${ROOT}/util/src DESTINATION ${WORK}/util)
if(NOT EXISTS ${WORK}/${FILE})
  message(FATAL_ERROR "${FILE} is not a file of the system")
endif()
file(APPEND ${WORK}/${FILE} "#include \"${INCLUDE}\"\n")

execute_process(
  COMMAND ${CMAKE_COMMAND} -DROOT=${ROOT} -DSYSTEM_ROOT=${WORK} -P ${CMAKE_CURRENT_LIST_DIR}/IncludeRule.cmake
  RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
file(REMOVE_RECURSE ${WORK})

if(result EQUAL 0)
  message(FATAL_ERROR "the include rule let ${FILE} include ${INCLUDE}:\n${output}")
endif()
string(FIND "${output}" "${FILE}: includes ${INCLUDE}:" at)
if(at EQUAL -1)
  message(FATAL_ERROR "the include rule failed, but without naming ${FILE} and ${INCLUDE}:\n${output}")
endif()
message("caught: ${FILE} including ${INCLUDE}")
