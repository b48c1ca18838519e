set(CMAKE_SYSTEM_PROCESSOR i686)
set(TAVI_TRIPLET i686-w64-mingw32)
# Doubles are calculated as doubles, as in every other build, not with the excess precision of the older unit. Callers
# of 32-bit Windows align the stack to four bytes only.
set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse -mstackrealign")
include(${CMAKE_CURRENT_LIST_DIR}/Windows.cmake)
