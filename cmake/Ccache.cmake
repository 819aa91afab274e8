# Compiles through ccache where it is installed; a second build of the same sources is then nearly free. It goes by what the
# compiler says of the headers it read, instead of reading them once more beforehand.
find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_COMMAND};-E;env;CCACHE_DEPEND=1;${CCACHE_PROGRAM}")
endif()
