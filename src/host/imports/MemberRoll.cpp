#include "host/imports/MemberRoll.h"

#include "host/imports/MemberFields.h"
#include "platform/values/Error.h"
#include "platform/values/Text.h"

namespace tavi::host {
std::string StoredMember::Name() const {
  return Trim(Value("first") + " " + Value("last"));
}

std::string StoredMember::NumberAndName() const {
  return std::to_string(number) + ", " + Name();
}

MemberRoll::MemberRoll(cDatabase& store) {
  std::string columns = "MembershipNumber";
  for (const MemberField& field : MemberFields()) columns += std::string(", ") + field.column;
  const auto rows = store.OpenRecordset("Select " + columns + " From Members");
  for (; !rows->AtEnd(); rows->MoveNext()) {
    if (IsNull(rows->Get("MembershipNumber"))) continue;
    StoredMember member;
    member.number = cDatabase::GetNumericField(*rows, "MembershipNumber");
    for (const MemberField& field : MemberFields()) member.values[field.name] = StoredValue(*rows, field);
    members_.emplace(member.number, std::move(member));
  }
}

const StoredMember* MemberRoll::Find(const std::string& place, std::optional<std::int32_t> number,
                                     const std::string& nationalNumber) const {
  const auto found = number ? members_.find(*number) : members_.end();
  const StoredMember* byNumber = found == members_.end() ? nullptr : &found->second;
  if (nationalNumber.empty()) return byNumber;
  if (byNumber != nullptr && byNumber->Value("ebu_number") == nationalNumber) return byNumber;
  const StoredMember* byNational = ByNationalNumber(place, nationalNumber);
  if (byNumber == nullptr || byNational == nullptr) return byNumber == nullptr ? byNational : byNumber;
  throw Error(ErrorNumber::InvalidArgument, "tavi",
              place + ": the club number is that of member " + byNumber->NumberAndName() + ", but the EBU number " +
                  nationalNumber + " is that of member " + byNational->NumberAndName() +
                  "; expected both numbers of one member");
}

const StoredMember* MemberRoll::ByNationalNumber(const std::string& place, const std::string& nationalNumber) const {
  const StoredMember* found = nullptr;
  for (const auto& [number, member] : members_) {
    if (member.Value("ebu_number") != nationalNumber) continue;
    if (found != nullptr) {
      throw Error(ErrorNumber::InvalidArgument, "tavi",
                  place + ": the EBU number " + nationalNumber + " is that of two members, " + found->NumberAndName() +
                      " and " + member.NumberAndName() + "; expected the club number, which tells them apart");
    }
    found = &member;
  }
  return found;
}

}  // namespace tavi::host
