# Cross-build for 64-bit Windows with Debian's MinGW-w64 (posix thread model), tests run
# under Wine.
#
# Dependencies built for Windows go in a prefix named by CMAKE_PREFIX_PATH; that prefix is
# searched together with the MinGW-w64 system root, never the build machine's own folders.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(VELMOR_MINGW_TRIPLE x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${VELMOR_MINGW_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${VELMOR_MINGW_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${VELMOR_MINGW_TRIPLE}-windres)

list(APPEND CMAKE_FIND_ROOT_PATH /usr/${VELMOR_MINGW_TRIPLE} ${CMAKE_PREFIX_PATH})
list(REMOVE_DUPLICATES CMAKE_FIND_ROOT_PATH)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# GCC may keep AVX values on the stack with aligned moves that assume 32-byte alignment, which
# Windows does not give (16 bytes); the assembler makes every aligned vector move an unaligned
# one, so the engines chosen at run time for AVX2 cannot fault on a stack address.
set(CMAKE_C_FLAGS_INIT "-Wa,-muse-unaligned-vector-move")
set(CMAKE_CXX_FLAGS_INIT "-Wa,-muse-unaligned-vector-move")

# The C and C++ runtimes and winpthread are linked in, so the DLL and the programs need no
# MinGW DLL beside them.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-static")

# Debian ships wine64 as /usr/lib/wine/wine64; other systems put it on the PATH.
find_program(VELMOR_WINE64 NAMES wine64 wine PATHS /usr/lib/wine NO_CMAKE_FIND_ROOT_PATH)
if(VELMOR_WINE64)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${VELMOR_WINE64})
endif()
