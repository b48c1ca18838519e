# What the Windows toolchains share: the compiler's own run-time libraries go into each program, so that nothing has to
# be installed beside it.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_CXX_COMPILER ${TAVI_TRIPLET}-g++-posix)
set(CMAKE_C_COMPILER ${TAVI_TRIPLET}-gcc-posix)
set(CMAKE_RC_COMPILER ${TAVI_TRIPLET}-windres)
set(TAVI_WIDL ${TAVI_TRIPLET}-widl)
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -static)
set(CMAKE_FIND_ROOT_PATH /usr/${TAVI_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
