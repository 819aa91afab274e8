# Asio without Boost: headers only. Defines the target Asio::Asio.
find_path(ASIO_INCLUDE_DIR asio.hpp PATH_SUFFIXES asio-only)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Asio REQUIRED_VARS ASIO_INCLUDE_DIR)
if(Asio_FOUND AND NOT TARGET Asio::Asio)
  find_package(Threads REQUIRED)
  add_library(Asio::Asio INTERFACE IMPORTED)
  target_include_directories(Asio::Asio SYSTEM INTERFACE "${ASIO_INCLUDE_DIR}")
  target_compile_definitions(Asio::Asio INTERFACE ASIO_STANDALONE ASIO_NO_DEPRECATED)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    target_compile_definitions(Asio::Asio INTERFACE ASIO_HAS_STD_COROUTINE ASIO_HAS_CO_AWAIT)
  endif()
  target_link_libraries(Asio::Asio INTERFACE Threads::Threads)
  if(WIN32)
    # It brings the system's headers along: nothing of theirs for drawing, which takes names like Escape.
    target_compile_definitions(Asio::Asio INTERFACE NOGDI)
    # It would choose its threads by the headers that happen to come before it: one kind in some objects, the other in
    # the rest, and then a context does not wait for its own thread when it goes away.
    target_compile_definitions(Asio::Asio INTERFACE ASIO_HAS_PTHREADS)
    target_link_libraries(Asio::Asio INTERFACE ws2_32 mswsock)
  endif()
endif()
