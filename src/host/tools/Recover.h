#pragma once

#include <string>

#include "host/commands/Context.h"

namespace tavi::host {

/// What `tavi recover` is asked for.
struct RecoverRequest {
  std::string oldFile;
  bool replace = false;  ///< the club's file may hold data, which are dropped
};

/// Exit codes of `tavi recover` beside kSucceeded, which means that everything was saved.
inline constexpr int kSomethingLost = 1;
inline constexpr int kNothingRecovered = 2;

/// `tavi recover OLDFILE`: saves what can be read of an old or damaged file into the club's file, which is made when
/// there is none, and tells for each table how many rows were found, saved and lost, and what damage was met. The old
/// file and its folder are not changed.
int Recover(const Context& context, const RecoverRequest& request);

}  // namespace tavi::host
