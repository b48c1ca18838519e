#pragma once

#include <cstdint>
#include <span>

namespace tavi {

/// Letters first, first + step, ... last, whose other case lies `delta` code points away.
struct CaseRun {
  std::uint32_t first;
  std::uint32_t last;
  std::uint32_t step;  // 1 or 2
  std::int32_t delta;
};

/// The runs in ascending order, disjoint: letters that have an upper case, letters that have a lower case.
std::span<const CaseRun> UpperCaseRuns();
std::span<const CaseRun> LowerCaseRuns();

}  // namespace tavi
