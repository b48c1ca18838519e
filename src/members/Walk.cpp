// A walk holds a record set of the store's file open between calls, and one use of the file with it. It ends at its
// last row, at EndGet and when another one begins; the file stays open until then. Each call reads the row that the
// cursor is on and moves behind it at its very end, so that an error of reading leaves the walk where it was and the
// call can be made again.
//
// The walk of the partnerships tidies up as it goes: a pair one of whose players is no active member any more is passed
// over, and that player is retired from all his pairs when the walk has ended. Not at once: the walk still reads that
// table.
#include "members/Walk.h"

#include <limits>

#include "members/Members.h"
#include "members/Partnerships.h"
#include "names/MemberValues.h"
#include "names/NameSearch.h"
#include "names/cPartnership.h"
#include "platform/values/Convert.h"
#include "platform/values/Text.h"
#include "store/OpenUse.h"

namespace tavi {
namespace {

/// The active member of a number; a new player numbered -1 when there is none.
std::shared_ptr<cPlayerDetails> GetActiveMemberDetails(cDatabase& store, std::int32_t memberNumber) {
  const std::shared_ptr<const NameKeyService> keys = store.GetPlatform().nameKeyService;
  OpenUse use(store);
  const auto rows = store.OpenRecordset(std::string("Select ") + kMemberRowColumns + " From Members Where " +
                                        NumberIs(memberNumber) + " And Active <> 0");
  std::shared_ptr<cPlayerDetails> player =
      rows->AtEnd() ? std::make_shared<cPlayerDetails>(keys) : ReadMemberRow(*rows, keys);
  rows->Close();
  use.Close();
  return player;
}

/// A player of the partnership in the current row; where the row names none, no member.
std::int32_t PlayerNumber(const ado::Recordset& row, const char* column) {
  const Value number = row.Get(column);
  return IsNull(number) ? kNoMember : ToInt32(number);
}

std::string ActiveRows(const std::string& select) {
  return select + " Where Active <> 0";
}

}  // namespace

// The list keeps the numbers in order and each once; it counts in 16 bits, so what it cannot hold is kept beside it.
void RetiredPlayers::Add(std::int32_t memberNumber) {
  using Limits = std::numeric_limits<std::int16_t>;
  const bool isListed = memberNumber >= Limits::min() && memberNumber <= Limits::max();
  if (isListed && list_.Count() < Limits::max()) {
    list_.Add(static_cast<std::int16_t>(memberNumber));
  } else {
    beyondList_.insert(memberNumber);
  }
}

// Also where a player has become active again meanwhile.
void RetiredPlayers::RetireFromPartnerships(cDatabase& store) const {
  for (std::int32_t position = 1; position <= list_.Count(); ++position) {
    DeletePairsOf(store, list_.Item(static_cast<std::int16_t>(position)));
  }
  for (const std::int32_t number : beyondList_) DeletePairsOf(store, number);
}

// All members are walked as a table, active ones by a statement.
bool Walk::GetFirstMember(cDatabase& store, bool includeInactive, std::int32_t& Number, std::string& Name,
                          double& ParScore, std::int16_t NameFormat) {
  EndGet(store);
  store.OpenDB();
  cursor_ = includeInactive
                ? store.OpenRecordset("Members", ado::CursorType::ForwardOnly, true)
                : store.OpenRecordset(ActiveRows(std::string("Select ") + kMemberRowColumns + " From Members"));
  return GetNextMember(store, includeInactive, Number, Name, ParScore, NameFormat);
}

bool Walk::GetFirstEBURecord(cDatabase& store, std::string& EBUNumber, std::string& Name, std::int16_t NameFormat) {
  EndGet(store);
  store.OpenDB();
  cursor_ = store.OpenRecordset(cDatabase::EBUMembersTable(), ado::CursorType::ForwardOnly, true);
  return GetNextEBURecord(store, EBUNumber, Name, std::to_string(NameFormat));
}

// Which file the remembered players are of is kept with them.
bool Walk::GetFirstPartnership(cDatabase& store, bool includeInactive, WalkedPartnership& partnership,
                               std::int16_t NameFormat) {
  EndGet(store);
  retiredPlayers_.emplace();
  retiredPlayersFile_ = store.DatabaseFilePath();
  store.OpenDB();
  cursor_ = includeInactive ? store.OpenRecordset("Partnerships", ado::CursorType::ForwardOnly, true)
                            : store.OpenRecordset(ActiveRows("Select * From Partnerships"));
  return GetNextPartnership(store, partnership, NameFormat);
}

// The end of the rows ends the walk, so that a host that walks to the end need not close anything.
bool Walk::HasRow(cDatabase& store) {
  if (!cursor_) return false;
  if (!cursor_->AtEnd()) return true;
  EndGet(store);
  return false;
}

bool Walk::GetNextMember(cDatabase& store, bool includeInactive, std::int32_t& Number, std::string& Name,
                         double& ParScore, std::int16_t NameFormat) {
  if (!HasRow(store)) return false;
  const std::shared_ptr<cPlayerDetails> player = ReadMemberRow(*cursor_, store.GetPlatform().nameKeyService);
  Number = player->MembershipNumber;
  ParScore = player->Handicap;
  Name = player->Name(NameFormat);
  // The statement's rows have no such column, and need none: they are active.
  retired_ = includeInactive && !ToBoolean(cursor_->Get("Active"));
  cursor_->MoveNext();
  return true;
}

bool Walk::GetNextEBURecord(cDatabase& store, std::string& EBUNumber, std::string& Name,
                            const std::string& NameFormat) {
  if (!HasRow(store)) return false;
  const std::string firstName = ToText(cursor_->Get("FirstName"));
  const std::string lastName = ToText(cursor_->Get("LastName"));
  EBUNumber = ToText(cursor_->Get("EBUNumber"));
  // Format 10 alone is another one here: the list has no more than two parts of a name.
  const bool surnameFirst = ToDouble(NameFormat) == name_format::kSurnameFirst;
  Name = surnameFirst ? lastName + ", " + firstName : firstName + " " + lastName;
  cursor_->MoveNext();
  return true;
}

// Both players of a pair that is passed over are looked at, since each of them may have retired.
bool Walk::GetNextPartnership(cDatabase& store, WalkedPartnership& partnership, std::int16_t NameFormat) {
  while (HasRow(store)) {
    const std::int32_t lowerNumber = PlayerNumber(*cursor_, "LowerPlayer");
    const std::int32_t higherNumber = PlayerNumber(*cursor_, "HigherPlayer");
    const std::shared_ptr<cPlayerDetails> lower = GetActiveMemberDetails(store, lowerNumber);
    const std::shared_ptr<cPlayerDetails> higher = GetActiveMemberDetails(store, higherNumber);
    const bool complete = lower->MembershipNumber >= 0 && higher->MembershipNumber >= 0;
    if (complete) ReadPartnership(lower, higher, partnership, NameFormat);
    if (lower->MembershipNumber < 0) Remember(lowerNumber);
    if (higher->MembershipNumber < 0) Remember(higherNumber);
    cursor_->MoveNext();
    if (complete) return true;
  }
  return false;
}

void Walk::Remember(std::int32_t retiredPlayer) {
  if (retiredPlayers_ && retiredPlayer != kNoMember) retiredPlayers_->Add(retiredPlayer);
}

// A row that does not say who comes first has the higher number first.
void Walk::ReadPartnership(const std::shared_ptr<cPlayerDetails>& lower, const std::shared_ptr<cPlayerDetails>& higher,
                           WalkedPartnership& partnership, std::int16_t NameFormat) const {
  const Value higherFirst = cursor_->Get("HigherFirst");
  const bool lowerFirst = !IsNull(higherFirst) && !ToBoolean(higherFirst);
  cPartnership pair(lowerFirst ? lower : higher, lowerFirst ? higher : lower);
  pair.Handicap = cDatabase::GetNonIntegerField(*cursor_, "Handicap", pair.Handicap);
  pair.KnownAs = cDatabase::GetTextField(*cursor_, "KnownAs");
  partnership.P1Number = pair.Player1->MembershipNumber;
  partnership.P1Name = pair.Player1->Name(NameFormat);
  partnership.P2Number = pair.Player2->MembershipNumber;
  partnership.P2Name = pair.Player2->Name(NameFormat);
  partnership.PartnershipName = pair.Name(NameFormat, true, false);
  partnership.AlternateName = pair.Name(NameFormat, true, true);
}

void Walk::EndGet(cDatabase& store) {
  retired_ = false;
  // Even where closing fails: the cursor of a closed file is of no use.
  const std::unique_ptr<ado::Recordset> ended = std::move(cursor_);
  store.CloseDB(true);
  // After the file is closed: the statements open it again, as the last use of it.
  // The same numbers are other people in another club's file.
  const bool isTheirFile = EqualIgnoringCase(retiredPlayersFile_, store.DatabaseFilePath());
  if (retiredPlayers_ && isTheirFile) retiredPlayers_->RetireFromPartnerships(store);
}

}  // namespace tavi
