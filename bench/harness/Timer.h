#pragma once

#include <vector>

namespace tavi::bench {

/// Seconds of processor time that this process has used, in all its threads.
double ProcessorSeconds();
/// Seconds on a clock that only goes forward.
double WallSeconds();

/// What one side took for a job in one round. Work outside of Section is not measured: it makes ready.
class Timer {
 public:
  template <typename Work>
  void Section(const Work& work) {
    const double begin = ProcessorSeconds();
    const double wallBegin = WallSeconds();
    work();
    processor_ += ProcessorSeconds() - begin;
    wall_ += WallSeconds() - wallBegin;
  }
  /// One of many calls in a section, whose times by the wall clock are kept one by one.
  template <typename Work>
  void Call(const Work& work) {
    const double begin = WallSeconds();
    work();
    calls_.push_back(WallSeconds() - begin);
  }
  /// Adds processor time that another process used for this one.
  void AddProcessor(double seconds) { processor_ += seconds; }

  [[nodiscard]] double Processor() const { return processor_; }
  [[nodiscard]] double Wall() const { return wall_; }
  [[nodiscard]] const std::vector<double>& Calls() const { return calls_; }

 private:
  double processor_ = 0;
  double wall_ = 0;
  std::vector<double> calls_;
};

}  // namespace tavi::bench
