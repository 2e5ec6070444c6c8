# For the toolchain files: libraries and headers of `triple` where Debian's cross compilers have them.
set(CMAKE_FIND_ROOT_PATH /usr/${triple})
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
if(NOT CMAKE_C_COMPILER)
  set(CMAKE_C_COMPILER ${triple}-gcc${variant})
  set(CMAKE_CXX_COMPILER ${triple}-g++${variant})
endif()
