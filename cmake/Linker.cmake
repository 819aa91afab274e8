# Links the builds of daily work with mold where it is installed, which makes a test program in a fifth of the time. What
# users get is linked by the compiler's own linker.
include(CheckLinkerFlag)
if(CMAKE_BUILD_TYPE STREQUAL "Debug")
  check_linker_flag(CXX -fuse-ld=mold TOLVANE_HAS_MOLD)
  if(TOLVANE_HAS_MOLD)
    add_link_options(-fuse-ld=mold)
  endif()
endif()
