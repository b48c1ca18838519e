// The walks, address lists and membership check of the public class.

#include "facade/MembershipDatabase.h"
#include "facade/MembershipDatabaseState.h"
#include "facade/StoreSlot.h"
#include "members/AddressLists.h"
#include "members/MembershipCheck.h"

namespace tavi {
namespace {

bool PassBack(bool found, const WalkedPartnership& walked, std::int32_t& P1Number, std::string& P1Name,
              std::int32_t& P2Number, std::string& P2Name, std::string& PartnershipName, std::string& AlternateName) {
  if (!found) return false;
  P1Number = walked.P1Number;
  P1Name = walked.P1Name;
  P2Number = walked.P2Number;
  P2Name = walked.P2Name;
  PartnershipName = walked.PartnershipName;
  AlternateName = walked.AlternateName;
  return true;
}

}  // namespace

bool MembershipDatabase::GetFirstMember(std::int32_t& Number, std::string& Name, double& ParScore,
                                        std::int16_t NameFormat) {
  return state_->walk.GetFirstMember(*ThreadStore(), IncludeInactiveMembers, Number, Name, ParScore, NameFormat);
}

bool MembershipDatabase::GetNextMember(std::int32_t& Number, std::string& Name, double& ParScore,
                                       std::int16_t NameFormat) {
  return state_->walk.GetNextMember(*ThreadStore(), IncludeInactiveMembers, Number, Name, ParScore, NameFormat);
}

bool MembershipDatabase::Retired() const {
  return state_->walk.Retired();
}

bool MembershipDatabase::GetFirstEBURecord(std::string& EBUNumber, std::string& Name, std::int16_t NameFormat) {
  return state_->walk.GetFirstEBURecord(*ThreadStore(), EBUNumber, Name, NameFormat);
}

bool MembershipDatabase::GetNextEBURecord(std::string& EBUNumber, std::string& Name, const std::string& NameFormat) {
  return state_->walk.GetNextEBURecord(*ThreadStore(), EBUNumber, Name, NameFormat);
}

bool MembershipDatabase::GetFirstPartnership(std::int32_t& P1Number, std::string& P1Name, std::int32_t& P2Number,
                                             std::string& P2Name, std::string& PartnershipName,
                                             std::string& AlternateName, double& /*ParScore*/,
                                             std::int16_t NameFormat) {
  WalkedPartnership walked;
  const bool found = state_->walk.GetFirstPartnership(*ThreadStore(), IncludeInactiveMembers, walked, NameFormat);
  return PassBack(found, walked, P1Number, P1Name, P2Number, P2Name, PartnershipName, AlternateName);
}

bool MembershipDatabase::GetNextPartnership(std::int32_t& P1Number, std::string& P1Name, std::int32_t& P2Number,
                                            std::string& P2Name, std::string& PartnershipName,
                                            std::string& AlternateName, double& /*ParScore*/, std::int16_t NameFormat) {
  WalkedPartnership walked;
  const bool found = state_->walk.GetNextPartnership(*ThreadStore(), walked, NameFormat);
  return PassBack(found, walked, P1Number, P1Name, P2Number, P2Name, PartnershipName, AlternateName);
}

void MembershipDatabase::EndGet() {
  state_->walk.EndGet(*ThreadStore());
}

std::string MembershipDatabase::MembersEmailAddress(std::int32_t MemberNo) {
  return tavi::MembersEmailAddress(*ThreadStore(), MemberNo);
}

std::vector<std::string> MembershipDatabase::AllEmailAddresses() {
  return tavi::AllEmailAddresses(*ThreadStore());
}

std::vector<EBUMembershipDetails> MembershipDatabase::SearchEBUList(const std::string& GivenName,
                                                                    const std::string& Surname) {
  return tavi::SearchEBUList(*ThreadStore(), GivenName, Surname);
}

std::int32_t MembershipDatabase::CheckMembershipID(std::int32_t MembershipID, const std::string& Name, double Par,
                                                   bool& Retired) {
  return tavi::CheckMembershipID(*ThreadStore(), MembershipID, Name, Par, Retired);
}

}  // namespace tavi
