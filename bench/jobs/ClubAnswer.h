#pragma once

#include "harness/Engines.h"

namespace tavi::bench {

/// What an evening or a recalculation leaves in a club's file.
template <typename File>
Answer AnswerOfClub(File& file) {
  Answer answer = file.Rows("Select MembershipNumber, Handicap From Members Order By MembershipNumber");
  const auto add = [&](const char* text) {
    const Answer more = file.Rows(text);
    answer.AddRow(static_cast<double>(more.Digest()));
  };
  add("Select LowerPlayer, HigherPlayer, Handicap From Partnerships");
  add("Select Count(*), Sum(ActualPercentage) From Results");
  add("Select Count(*), Sum(MasterPoints) From MasterPoints");
  return answer;
}

}  // namespace tavi::bench
