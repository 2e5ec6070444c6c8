# 64-bit Windows, built with mingw-w64 and run by Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(triple x86_64-w64-mingw32)
# The compilers with native Windows threads have no std::thread.
set(variant -posix)
include(${CMAKE_CURRENT_LIST_DIR}/cross.cmake)
set(CMAKE_RC_COMPILER ${triple}-windres)
set(CMAKE_CROSSCOMPILING_EMULATOR /usr/lib/wine/wine64)
