# The include rule of the system (util/src, common/, src/), read from the include lines of its
# files:
#  - a proxy header (..._Proxy.h) is included only by the proxies (src/) and by the client
#    entry's source (common/Kelvo/Common/FenvoraDefine.cpp), which makes them: records, marshal,
#    call helpers, interfaces and the utility know the services by their interfaces;
#  - an interface header (FI....h, ...API.h) is a leaf of the services: it includes neither a
#    proxy header nor the client entry's header, which includes the interfaces;
#  - the system includes nothing of the host (platform/host), the simulated TV (tools/) or the
#    tests (tests/): it knows only the platform API.
#
#   cmake -DROOT=<source tree> [-DSYSTEM_ROOT=<tree holding the system's folders>] -P IncludeRule.cmake
#
# SYSTEM_ROOT (default ROOT) lets a test check a copy of the system with a planted include.
# Every violation is printed as "<file>: includes <header>: <why>"; any fails the run.
cmake_minimum_required(VERSION 3.25)

if(NOT ROOT)
  message(FATAL_ERROR "usage: cmake -DROOT=<source tree> [-DSYSTEM_ROOT=<tree>] -P IncludeRule.cmake")
endif()
if(NOT SYSTEM_ROOT)
  set(SYSTEM_ROOT ${ROOT})
endif()

set(kSystemFolders util/src common src)
set(kEntrySource common/Kelvo/Common/FenvoraDefine.cpp)
set(kEntryHeader FenvoraDefine.h)

# Headers the system must never see, by name: the system's own files include by name through
# include folders, so a name is what an include line holds.
set(outside)
foreach(folder platform/host tools tests)
  file(GLOB_RECURSE headers ${ROOT}/${folder}/*.h ${ROOT}/${folder}/*.hpp)
  foreach(header IN LISTS headers)
    get_filename_component(name ${header} NAME)
    list(APPEND outside ${name})
  endforeach()
endforeach()
list(REMOVE_DUPLICATES outside)
if(NOT outside)
  message(FATAL_ERROR "no header found under ${ROOT}/platform/host, tools or tests: is ROOT the source tree?")
endif()

set(files)
foreach(folder IN LISTS kSystemFolders)
  file(GLOB_RECURSE found ${SYSTEM_ROOT}/${folder}/*.h ${SYSTEM_ROOT}/${folder}/*.cpp)
  list(APPEND files ${found})
endforeach()
list(SORT files)

set(violations 0)
set(sawEntry FALSE)
foreach(file IN LISTS files)
  file(RELATIVE_PATH relative ${SYSTEM_ROOT} ${file})
  get_filename_component(fileName ${file} NAME)
  set(isProxy FALSE)
  set(isInterface FALSE)
  if(relative MATCHES "^src/" AND fileName MATCHES "_Proxy\\.(h|cpp)$")
    set(isProxy TRUE)
  elseif(fileName MATCHES "^FI.*\\.h$" OR fileName MATCHES "API\\.h$")
    set(isInterface TRUE)
  endif()
  if(relative STREQUAL kEntrySource)
    set(sawEntry TRUE)
  endif()

  file(STRINGS ${file} lines REGEX "^[ \t]*#[ \t]*include[ \t]*[<\"]")
  foreach(line IN LISTS lines)
    if(NOT line MATCHES "include[ \t]*[<\"]([^>\"]+)[>\"]")
      continue()
    endif()
    set(included ${CMAKE_MATCH_1})
    get_filename_component(includedName ${included} NAME)
    set(why "")
    if(includedName MATCHES "_Proxy\\.h$" AND NOT isProxy AND NOT relative STREQUAL kEntrySource)
      if(isInterface)
        set(why "an interface header includes no proxy")
      else()
        set(why "only proxies and ${kEntrySource} include proxies")
      endif()
    elseif(isInterface AND includedName STREQUAL kEntryHeader)
      set(why "an interface header does not include the client entry, which includes it")
    elseif(included MATCHES "(^|/)(platform/host|tools|tests)/" OR includedName IN_LIST outside)
      set(why "the system includes nothing of the host, the simulated TV or the tests")
    endif()
    if(why)
      message("${relative}: includes ${included}: ${why}")
      math(EXPR violations "${violations} + 1")
    endif()
  endforeach()
endforeach()

list(LENGTH files count)
if(NOT sawEntry)
  message(FATAL_ERROR "${kEntrySource} not found among the ${count} files under ${SYSTEM_ROOT}")
endif()
if(violations GREATER 0)
  message(FATAL_ERROR "${violations} include(s) break the layers")
endif()
message("include rule holds over ${count} files")
