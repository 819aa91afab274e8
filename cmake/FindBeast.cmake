# Boost's parser of HTTP: headers only. Defines the target Beast::Beast.
if(CMAKE_CROSSCOMPILING AND NOT BOOST_INCLUDE_DIR AND EXISTS "/usr/include/boost/beast.hpp")
  # They serve every system; but beside them lie headers that are the building system's alone.
  set(BOOST_INCLUDE_DIR "${CMAKE_BINARY_DIR}/boost-only")
  file(MAKE_DIRECTORY "${BOOST_INCLUDE_DIR}")
  file(CREATE_LINK /usr/include/boost "${BOOST_INCLUDE_DIR}/boost" SYMBOLIC)
endif()
find_path(BOOST_INCLUDE_DIR boost/beast/http/basic_parser.hpp)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Beast REQUIRED_VARS BOOST_INCLUDE_DIR)
if(Beast_FOUND AND NOT TARGET Beast::Beast)
  add_library(Beast::Beast INTERFACE IMPORTED)
  target_include_directories(Beast::Beast SYSTEM INTERFACE "${BOOST_INCLUDE_DIR}")
endif()
