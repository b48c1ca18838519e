#include "names/MemberRow.h"

#include "names/MemberValues.h"
#include "store/cDatabase.h"

namespace tavi {
namespace {

constexpr std::int16_t kFirstNameAndSurname = 2;

}  // namespace

std::shared_ptr<cPlayerDetails> ReadMemberRow(const ado::Recordset& row,
                                              const std::shared_ptr<const NameKeyService>& nameKeyService) {
  if (row.AtEnd()) throw Error(ErrorNumber::Component, "TaviMembership", "End of Record Set");
  auto player = std::make_shared<cPlayerDetails>(nameKeyService);
  player->MembershipNumber = cDatabase::GetNumericField(row, "MembershipNumber", kNoMember);
  player->SetNameComponents(cDatabase::GetTextField(row, "FirstName"), cDatabase::GetTextField(row, "MiddleInitials"),
                            cDatabase::GetTextField(row, "LastName"));
  player->KnownAs = cDatabase::GetTextField(row, "KnownAs");
  player->Handicap = cDatabase::GetNonIntegerField(row, "Handicap", kNeutralHandicap);
  player->EBUNumber = cDatabase::GetTextField(row, "EBUNumber");
  player->UniquenessFlag = kFirstNameAndSurname;
  return player;
}

}  // namespace tavi
