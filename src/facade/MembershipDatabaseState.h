#pragma once

#include "competitions/ResultUpdate.h"
#include "facade/MembershipDatabase.h"
#include "handicaps/HeldSettings.h"
#include "members/Walk.h"

namespace tavi {

/// What the operations of one public object keep between calls.
class MembershipDatabase::State {
 public:
  HeldSettings handicapSettings;
  ResultUpdate results{handicapSettings};
  Walk walk;
};

}  // namespace tavi
