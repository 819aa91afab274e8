# The warnings every target of ours is compiled with; each of them is an error.
function(tolvane_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion
                                           -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
endfunction()
