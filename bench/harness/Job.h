#pragma once

#include <functional>
#include <string>
#include <vector>

#include "harness/Answer.h"
#include "harness/Timer.h"

namespace tavi::bench {

/// Does a job once and tells what came out.
using Side = std::function<Answer(Timer&)>;

/// Something that is measured: done by this engine and by another one in turns, with the same answer.
struct Job {
  std::string name;
  Side ours = {};
  /// SQLite, or what the job's name says; none: only this engine's times are shown.
  Side other = {};
  /// The least that the job could cost: the same over plain arrays in memory. May be empty.
  Side floor = {};
  bool inOrder = false;  ///< the order of the rows is part of the answer
  bool byWall = false;   ///< other processes do the work, so that the wall clock counts
};
using Jobs = std::vector<Job>;

/// What the rounds of a job gave. Times are seconds of processor time of a round (or by the wall clock); calls are by
/// the wall clock.
struct Measured {
  std::string name;
  double ours = 0;   ///< median over the rounds
  double other = 0;  ///< 0: there is none
  double floor = 0;
  double ratio = 0;           ///< median over the rounds of ours / other
  std::vector<double> calls;  ///< ours, sorted
  double memory = 0;          ///< greatest resident memory while ours ran, bytes
  std::uint64_t rows = 0;
};

/// Runs a job `rounds` times in turns. Raises std::runtime_error when the answers differ.
Measured Measure(const Job& job, int rounds);

/// The value below which a part (0..1) of the sorted values lies; 0 of none.
double Percentile(const std::vector<double>& sorted, double part);

}  // namespace tavi::bench
