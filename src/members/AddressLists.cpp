// Lists of addresses. The record sets are closed before the file's use is, and closing is in the open, so that an error
// of writing the file reaches the caller; where an error passes before, both close themselves.
#include "members/AddressLists.h"

#include "members/Members.h"
#include "platform/values/Text.h"
#include "store/OpenUse.h"
#include "util/KeyedList.h"

namespace tavi {
namespace {

/// The number is one in this table, and a text for callers, as it is with members.
void AddDetails(const ado::Recordset& row, std::vector<EBUMembershipDetails>& found) {
  EBUMembershipDetails details;
  details.SetEBUNumber(std::to_string(cDatabase::GetNumericField(row, "EBUNumber", 0)));
  details.SetFirstName(cDatabase::GetTextField(row, "FirstName"));
  details.SetLastName(cDatabase::GetTextField(row, "LastName"));
  details.SetCountyCode(cDatabase::GetTextField(row, "CountyCode"));
  details.SetLocation(cDatabase::GetTextField(row, "Location"));
  found.push_back(std::move(details));
}

}  // namespace

std::string MembersEmailAddress(cDatabase& store, std::int32_t MemberNo) {
  OpenUse use(store);
  const auto rows = store.OpenRecordset("Select email from Members where " + NumberIs(MemberNo));
  std::string address = rows->AtEnd() ? std::string() : cDatabase::GetTextField(*rows, "email", true);
  rows->Close();
  use.Close();
  return address;
}

std::vector<std::string> AllEmailAddresses(cDatabase& store) {
  KeyedList<std::string, std::string> addresses;
  OpenUse use(store);
  const auto rows = store.OpenRecordset("Select email from Members where Active <> 0");
  for (; !rows->AtEnd(); rows->MoveNext()) {
    std::string address = cDatabase::GetTextField(*rows, "email", true);
    // The key makes a second member of an address an error, as callers know it.
    if (!address.empty()) addresses.Append(UpperCase(address), address);
  }
  rows->Close();
  use.Close();
  std::vector<std::string> list;
  // As they are written in the file, in its order; the capitals were for comparing only.
  for (const auto& [key, address] : addresses) list.push_back(address);
  return list;
}

std::vector<EBUMembershipDetails> SearchEBUList(cDatabase& store, const std::string& GivenName,
                                                const std::string& Surname) {
  std::vector<EBUMembershipDetails> found;
  OpenUse use(store);
  std::string statement = "Select * from EBUMembershipList where LastName = " + cDatabase::SQLString(Surname);
  // An empty name is no condition, also where rows have none.
  if (!GivenName.empty()) statement += " and FirstName = " + cDatabase::SQLString(GivenName);
  const auto rows = store.OpenRecordset(statement);
  // What was found before a row that cannot be read is of use all the same.
  try {
    for (; !rows->AtEnd(); rows->MoveNext()) AddDetails(*rows, found);
  } catch (const Error&) {
    return found;
  }
  rows->Close();
  use.Close();
  return found;
}

}  // namespace tavi
