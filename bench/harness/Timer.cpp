#include "harness/Timer.h"

#include <ctime>

namespace tavi::bench {
namespace {

double Seconds(clockid_t clock) {
  struct timespec time {};
  ::clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

}  // namespace

double ProcessorSeconds() {
  return Seconds(CLOCK_PROCESS_CPUTIME_ID);
}

double WallSeconds() {
  return Seconds(CLOCK_MONOTONIC);
}

}  // namespace tavi::bench
