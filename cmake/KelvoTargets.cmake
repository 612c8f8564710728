# Warnings for the project's own code; third-party headers come in as SYSTEM includes.
function(kelvo_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wshadow -Wnon-virtual-dtor -Wformat=2 -Werror)
endfunction()

