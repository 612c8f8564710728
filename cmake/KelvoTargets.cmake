# Warnings for the project's own code; third-party headers come in as SYSTEM includes.
function(kelvo_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Werror)
endfunction()

# Sources of every subfolder below DIR, picked up as they are added.
function(kelvo_glob_sources out)
  file(GLOB_RECURSE _srcs CONFIGURE_DEPENDS ${ARGN})
  list(SORT _srcs)
  set(${out} ${_srcs} PARENT_SCOPE)
endfunction()

# Adds every subfolder of the current folder that has a CMakeLists.txt, in name order, so that a
# new tool, test area or benchmark needs no edit here.
function(kelvo_add_subfolders)
  file(GLOB _lists CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*/CMakeLists.txt)
  list(SORT _lists)
  foreach(_list IN LISTS _lists)
    get_filename_component(_dir ${_list} DIRECTORY)
    add_subdirectory(${_dir})
  endforeach()
endfunction()
