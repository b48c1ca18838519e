#pragma once

#include <string>

#include "host/commands/Context.h"

namespace tavi::host {

/// What `tavi check` was asked for.
struct CheckRequest {
  std::string file{};   ///< empty: the club's file
  bool strict = false;  ///< also what other programs leave behind without harm
};

/// Exit codes of `tavi check`.
inline constexpr int kSound = 0;
inline constexpr int kDamaged = 1;
inline constexpr int kCannotBeOpened = 2;

/// `tavi check`: walks through an Access file and says what in it does not agree, where, and what to do. Changes
/// nothing.
int Check(const Context& context, const CheckRequest& request);

}  // namespace tavi::host
