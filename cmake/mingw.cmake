# The toolchain of the preset mingw: 64-bit Windows with Debian's cross compilers. OX_MINGW_PREFIX is the
# folder that tools/windows/build-deps.sh prints.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(target x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${target}-gcc-posix)
set(CMAKE_CXX_COMPILER ${target}-g++-posix)
set(CMAKE_RC_COMPILER ${target}-windres)
set(CMAKE_Fortran_COMPILER CMAKE_Fortran_COMPILER-NOTFOUND) # the host's makes nothing for Windows
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES OX_MINGW_PREFIX)

set(CMAKE_FIND_ROOT_PATH ${OX_MINGW_PREFIX} /usr/${target})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} ${OX_MINGW_PREFIX}/lib/pkgconfig)

find_program(OX_WINE NAMES wine64 PATHS /usr/lib/wine NO_CMAKE_FIND_ROOT_PATH)
set(CMAKE_CROSSCOMPILING_EMULATOR ${OX_WINE})
