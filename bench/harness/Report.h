#pragma once

#include <string>
#include <vector>

#include "harness/Job.h"

namespace tavi::bench {

/// The heading of the table of measurements, and a job's row of it, as lines of Markdown.
std::string Heading();
std::string Row(const Measured& measured);

/// How jobs grow over several sizes: for each job its times, and the slope of the line through them in a diagram with
/// logarithmic axes (1: in proportion to the size; 0: not at all). `sizes` in any unit, smallest first; one list of
/// measurements for each, in the same order of jobs.
std::string GrowthTable(const std::vector<double>& sizes, const std::vector<std::vector<Measured>>& measured);

}  // namespace tavi::bench
