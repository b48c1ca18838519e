#pragma once

#include "data/Data.h"
#include "harness/Job.h"

namespace tavi::bench {

/// What the jobs are done on.
struct Scale {
  ClubSize club;
  int rows = 50'000;  ///< of the plain table
};

// Each group appends its jobs. Data are made when a job first runs.

/// An evening of 30 pairs, noted and awarded.
void AddEveningJobs(Jobs& jobs, Data& data, const Scale& scale);
/// Handicaps, one by one and all.
void AddHandicapJobs(Jobs& jobs, Data& data, const Scale& scale);
/// Rows found, added, changed and deleted by their key, a statement each.
void AddKeyJobs(Jobs& jobs, Data& data, const Scale& scale);
/// Whole tables read, folded, changed, indexed.
void AddScanJobs(Jobs& jobs, Data& data, const Scale& scale);
/// Joins, sorts.
void AddJoinJobs(Jobs& jobs, Data& data, const Scale& scale);
/// Files opened, compacted, and the command.
void AddFileJobs(Jobs& jobs, Data& data, const Scale& scale);

}  // namespace tavi::bench
