// Who is meant by a name. FindMember wants one member and takes no risk: the exact name, else the same first name and
// surname with initials that fit, and then only when there is one. FindNearestMatches offers: the members with the same
// keys, by how well the names themselves agree. Both ask the database for the rows that come into question, by indexed
// columns, and compare in memory only those.
#include "names/NameSearch.h"

#include <algorithm>

#include "names/MemberValues.h"
#include "names/NameMatching.h"
#include "names/NameText.h"
#include "store/OpenUse.h"

namespace tavi {
namespace {

constexpr std::int16_t kInitialsFit = 2;

/// The only active member of this first name and surname whose initials fit, or -1.
// Two who fit make the name nobody's: a result would be stored for the wrong member.
std::int32_t FindByInitials(cDatabase& database, const PlayerNameParts& name) {
  const auto rows =
      database.OpenRecordset("Select * from Members where FirstName = " + cDatabase::SQLString(name.FirstName) +
                             " And LastName = " + cDatabase::SQLString(name.Surname) + " And Active <> 0");
  std::int32_t found = kNoMember;
  for (bool hasHit = false; !rows->AtEnd(); rows->MoveNext()) {
    const std::string initials = cDatabase::GetTextField(*rows, "MiddleInitials");
    if (CompareInitials(name.Initials, initials) < kInitialsFit) continue;
    if (hasHit) return kNoMember;
    hasHit = true;
    found = cDatabase::GetNumericField(*rows, "MembershipNumber", kNoMember);
  }
  return found;
}

/// Active members whose keys equal those of the typed name's parts.
/// A part that was not typed is no condition: a single word is a first name, and finds everybody of that first name.
std::string ConditionFor(const cPlayerDetails& typed) {
  std::string condition = "Where Active <> 0";
  if (!typed.FirstName().empty())
    condition += " And FuzzedFirstName = " + cDatabase::SQLString(typed.FuzzedFirstName());
  if (!typed.Surname().empty()) condition += " And FuzzedLastName = " + cDatabase::SQLString(typed.FuzzedSurname());
  return condition;
}

using Candidates = std::vector<std::shared_ptr<cPlayerDetails>>;

std::int16_t WeightOf(const std::shared_ptr<cPlayerDetails>& candidate) {
  return std::get<std::int16_t>(candidate->CandidateWeight);
}

/// Keeps the list sorted by weight; among equal weights the earlier row stays first.
// A few candidates at most share the keys of a name, so a plain search finds the place.
void InsertByWeight(Candidates& candidates, std::shared_ptr<cPlayerDetails> candidate, std::int16_t weight) {
  const auto place = std::find_if(candidates.begin(), candidates.end(),
                                  [weight](const auto& other) { return WeightOf(other) < weight; });
  candidate->CandidateWeight = weight;
  candidates.insert(place, std::move(candidate));
}

}  // namespace

std::shared_ptr<cPlayerDetails> ReadMemberRow(const ado::Recordset& row,
                                              const std::shared_ptr<const NameKeyService>& nameKeyService) {
  if (row.AtEnd()) throw Error(ErrorNumber::Component, "TaviMembership", "End of Record Set");
  // Null and missing columns give what is usual for them, as files of older versions have fewer.
  auto player = std::make_shared<cPlayerDetails>(nameKeyService);
  player->MembershipNumber = cDatabase::GetNumericField(row, "MembershipNumber", kNoMember);
  player->SetNameComponents(cDatabase::GetTextField(row, "FirstName"), cDatabase::GetTextField(row, "MiddleInitials"),
                            cDatabase::GetTextField(row, "LastName"));
  player->KnownAs = cDatabase::GetTextField(row, "KnownAs");
  player->Handicap = cDatabase::GetNonIntegerField(row, "Handicap", kNeutralHandicap);
  player->EBUNumber = cDatabase::GetTextField(row, "EBUNumber");
  player->UniquenessFlag = uniqueness::kSurname;
  return player;
}

// Compared by the database, without regard to case. A row without initials has an empty text there; one with a null,
// which other programs may have written, is not found.
std::int32_t GetMembershipID(cDatabase& database, const std::string& FirstName, const std::string& Initials,
                             const std::string& LastName, bool& Retired) {
  return WhileOpen(database, [&] {
    const auto row = database.OpenRecordset(
        "Select MembershipNumber, Active from Members Where FirstName = " + cDatabase::SQLString(FirstName) +
        " And MiddleInitials = " + cDatabase::SQLString(Initials) +
        " And LastName = " + cDatabase::SQLString(LastName));
    if (row->AtEnd()) return kNoMember;
    Retired = !cDatabase::GetBooleanField(*row, "Active");
    return cDatabase::GetNumericField(*row, "MembershipNumber", kNoMember);
  });
}

std::int32_t FindMember(cDatabase& database, const std::string& Name, bool ExactMatchRequired) {
  return WhileOpen(database, [&] {
    // Not even a member without any name is meant by it.
    if (Name.empty()) return kNoMember;
    const PlayerNameParts name = SplitName(Name);
    bool retired = false;
    // A retired member of exactly this name does not hide an active one whose initials fit.
    const std::int32_t exact = GetMembershipID(database, name.FirstName, name.Initials, name.Surname, retired);
    if (exact != kNoMember && !retired) return exact;
    return ExactMatchRequired ? kNoMember : FindByInitials(database, name);
  });
}

std::vector<std::int32_t> FindNearestMatches(cDatabase& database, const std::string& Name) {
  if (Name.empty()) return {};
  const auto& service = database.GetPlatform().nameKeyService;
  cPlayerDetails typed(service);
  typed.SetName(Name);

  return WhileOpen(database, [&] {
    const auto rows =
        database.OpenRecordset("Select " + std::string(kMemberRowColumns) + " from Members " + ConditionFor(typed));
    Candidates candidates;
    for (; !rows->AtEnd(); rows->MoveNext()) {
      auto candidate = ReadMemberRow(*rows, service);
      const std::int16_t weight = typed.MatchWeight(*candidate);
      // Equal keys are only a beginning: initials that contradict make it another name.
      if (weight >= 1) InsertByWeight(candidates, std::move(candidate), weight);
    }
    std::vector<std::int32_t> numbers;
    for (const auto& candidate : candidates) numbers.push_back(candidate->MembershipNumber);
    return numbers;
  });
}

}  // namespace tavi
