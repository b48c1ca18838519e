#include "harness/Job.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

namespace tavi::bench {
namespace {

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return Percentile(values, 0.5);
}

/// Greatest memory that the system counts from now on.
void ForgetGreatestMemory() {
  std::ofstream("/proc/self/clear_refs") << "5";
}

double GreatestMemory() {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    double kilobytes = 0;
    if (word == "VmHWM:" && status >> kilobytes) return kilobytes * 1024;
  }
  return 0;
}

}  // namespace

double Percentile(const std::vector<double>& sorted, double part) {
  if (sorted.empty()) return 0;
  return sorted[static_cast<std::size_t>(part * static_cast<double>(sorted.size() - 1))];
}

Measured Measure(const Job& job, int rounds) {
  Measured measured;
  measured.name = job.name;
  std::vector<double> ours;
  std::vector<double> other;
  std::vector<double> floor;
  std::vector<double> ratios;
  const auto time = [&](const Timer& timer) { return job.byWall ? timer.Wall() : timer.Processor(); };
  for (int round = 0; round < rounds; ++round) {
    ForgetGreatestMemory();
    Timer timer;
    const Answer answer = job.ours(timer);
    measured.memory = std::max(measured.memory, GreatestMemory());
    measured.rows = answer.Rows();
    ours.push_back(time(timer));
    measured.calls.insert(measured.calls.end(), timer.Calls().begin(), timer.Calls().end());
    const auto compare = [&](const Side& side, std::vector<double>& times, const char* whose) {
      if (!side) return;
      Timer otherTimer;
      if (!side(otherTimer).IsSameAs(answer, job.inOrder)) {
        throw std::runtime_error("'" + job.name + "': the answer differs from that of " + whose + ".");
      }
      times.push_back(time(otherTimer));
    };
    compare(job.other, other, "the other engine");
    compare(job.floor, floor, "the plain arrays");
    if (job.other) ratios.push_back(ours.back() / std::max(other.back(), 1e-9));
  }
  std::sort(measured.calls.begin(), measured.calls.end());
  measured.ours = Median(ours);
  measured.other = Median(other);
  measured.floor = Median(floor);
  measured.ratio = Median(ratios);
  return measured;
}

}  // namespace tavi::bench
