#pragma once

#include <cstddef>
#include <set>
#include <string>

namespace tavi::host {

/// The calls by which a program changes files of the system: writes, changes of length, flushes, and what makes,
/// removes and renames files and folders. Test programs that are built with SystemCalls.cpp make them through it, the
/// standard library's own included, so that one of them can be chosen to be the last.
enum class CallTrouble {
  Kill,             ///< the process is killed before the call
  KillInTheMiddle,  ///< a write has stored its first half, then the process is killed; other calls as for Kill
  DiskFull,         ///< from this call on nothing grows and nothing is made any more (ENOSPC)
};

/// Brings trouble at the call of this number, counted from now on, from 0. For one thread.
void TroubleAtCall(std::size_t number, CallTrouble trouble);
/// Lets everything pass again.
void NoTrouble();
/// Calls since TroubleAtCall.
[[nodiscard]] std::size_t ChangingCalls();
/// The files and folders that have been flushed since, by their paths, once each.
[[nodiscard]] const std::set<std::string>& FlushedPaths();

}  // namespace tavi::host
