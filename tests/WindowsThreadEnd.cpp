// Lets test programs end threads. The compiler for Windows keeps the values that belong to a thread in memory of one
// key of the threads' library, and the list of what is to be destroyed under another; when a thread ends, keys are
// cleared in the order in which they were made. Left alone, the memory is made first and gone before its values are
// destroyed (GCC's bug 83562). Here the list is made before anything else. The automation server has a way of its own
// (ThreadEnd.cpp).
#include <cxxabi.h>

namespace {

void DestroyNothing(void* /*object*/) {}

struct ListOfThreadEnd {
  ListOfThreadEnd() { __cxxabiv1::__cxa_thread_atexit(&DestroyNothing, nullptr, nullptr); }
};

constexpr int kBeforeAllOthers = 101;
[[maybe_unused]] __attribute__((init_priority(kBeforeAllOthers))) const ListOfThreadEnd kListOfThreadEnd;

}  // namespace
