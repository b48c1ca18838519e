#pragma once

#include <cstdint>
#include <string>

#include "store/cDatabase.h"

namespace tavi {

/// What a standard member who joins today owes.
struct SubscriptionTerms {
  Date NextDue;
  double Amount = 0.0;
};

/// By the club's policy for "Standard" members; without one a year from today and nothing. An empty amount is 0. Raises
/// TypeMismatch when the policy's day does not exist this year (29 February), and an error that names table and column
/// when the policy cannot be read: a column that is not there, an empty SpecificDate, a day that is no date.
SubscriptionTerms GetStandardSubscriptionTerms(cDatabase& store);

/// Checks a number and name against the records: the number of the member who bears the name when it is another one;
/// the number itself when it is known (`Retired` tells whether that member is retired); otherwise the player is
/// enrolled under the number as a standard member and the result is -1. Errors of the name-key service come before the
/// file is opened.
std::int32_t CheckMembershipID(cDatabase& store, std::int32_t MembershipID, const std::string& Name, double Par,
                               bool& Retired);

}  // namespace tavi
