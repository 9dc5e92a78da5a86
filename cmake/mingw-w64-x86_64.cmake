# Cross-compiles for 64-bit Windows with Debian's MinGW-w64 (POSIX threads, which Qt needs).
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(VARNO_MINGW_TRIPLE x86_64-w64-mingw32)

set(CMAKE_C_COMPILER ${VARNO_MINGW_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${VARNO_MINGW_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${VARNO_MINGW_TRIPLE}-windres)
set(CMAKE_AR ${VARNO_MINGW_TRIPLE}-gcc-ar-posix CACHE FILEPATH "")
set(CMAKE_RANLIB ${VARNO_MINGW_TRIPLE}-gcc-ranlib-posix CACHE FILEPATH "")

# Libraries and packages come from the MinGW sysroot and the Windows prefix (Qt and the
# image libraries); programs (moc, rcc, uic) from the host.
set(CMAKE_FIND_ROOT_PATH /usr/${VARNO_MINGW_TRIPLE})
if(DEFINED ENV{VARNO_WINDOWS_PREFIX})
  list(APPEND CMAKE_FIND_ROOT_PATH $ENV{VARNO_WINDOWS_PREFIX})
endif()
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
