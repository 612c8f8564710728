# Warnings for the project's own code; third-party headers come in as SYSTEM includes.
function(kelvo_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wshadow -Wnon-virtual-dtor -Wformat=2 -Werror)
endfunction()

# Sources of every subfolder below DIR, picked up as they are added.
function(kelvo_glob_sources out)
  file(GLOB_RECURSE _srcs CONFIGURE_DEPENDS ${ARGN})
  list(SORT _srcs)
  set(${out} ${_srcs} PARENT_SCOPE)
endfunction()
