#include "host/imports/PairImport.h"

#include <algorithm>
#include <set>

#include "host/imports/ImportPlan.h"
#include "host/imports/MemberRoll.h"
#include "members/Partnerships.h"
#include "platform/values/Text.h"

// Regular pairs. A pair is stored under its lower and its higher number, in whatever order it was entered, and that is
// how it is known here. Both players must be members already: a pairs file has too little to make a member of.
namespace tavi::host {
namespace {

/// The lower number and the higher one.
using PairKey = std::pair<std::int32_t, std::int32_t>;

struct StoredPair {
  std::string knownAs;
  bool active = true;
};

/// All pairs of the club, inactive ones too, which stay so unless the file says otherwise.
std::map<PairKey, StoredPair> ReadPairs(cDatabase& store) {
  std::map<PairKey, StoredPair> pairs;
  const auto rows = store.OpenRecordset("Select LowerPlayer, HigherPlayer, KnownAs, Active From Partnerships");
  for (; !rows->AtEnd(); rows->MoveNext()) {
    const PairKey key{cDatabase::GetNumericField(*rows, "LowerPlayer"),
                      cDatabase::GetNumericField(*rows, "HigherPlayer")};
    pairs[key] = {Trim(cDatabase::PlainText(cDatabase::GetTextField(*rows, "KnownAs"))),
                  cDatabase::GetBooleanField(*rows, "Active")};
  }
  return pairs;
}

const char* YesOrNo(bool yes) {
  return yes ? "y" : "n";
}

/// Plans the import of one pairs file. Used once.
class Planner {
 public:
  Planner(cDatabase& store, const PairFile& file)
      : keys_(*store.GetPlatform().nameKeyService),
        file_(file),
        roll_(store),
        widths_(store, "Partnerships"),
        pairs_(ReadPairs(store)) {}

  ImportPlan Plan() {
    for (const PairLine& line : file_.pairs) Take(line);
    return std::move(plan_);
  }

 private:
  /// Plans one line. What it does not say stays, in a new pair what new ones have: no name of its own, and active.
  void Take(const PairLine& line) {
    const StoredMember& first = Player(line, 0);
    const StoredMember& second = Player(line, 1);
    if (first.number == second.number) {
      Refuse(line, "member " + std::to_string(first.number) + " is paired with themself; expected two members");
    }
    // The same pair in either order is the same pair, in the file as in the club.
    const PairKey key = std::minmax(first.number, second.number);
    if (!seen_.insert(key).second) Refuse(line, "the pair stands twice in the file; expected it once");
    widths_.Require(PlaceInFile(file_.name, line.line), "KnownAs", line.knownAs.value_or(""));
    RecordChange change;
    change.line = line.line;
    // In the order of the file, in which a new pair is entered; one that is there keeps its own.
    change.members = {first.number, second.number};
    change.name = first.Name() + " & " + second.Name();
    const auto stored = pairs_.find(key);
    change.isNew = stored == pairs_.end();
    const StoredPair before = change.isNew ? StoredPair{} : stored->second;
    const std::string knownAs = line.knownAs.value_or(before.knownAs);
    const bool active = line.active.value_or(before.active);
    if (knownAs != before.knownAs) change.fields.push_back({"known_as", before.knownAs, knownAs});
    // A new pair shows this field at least, so that a dry run has a line for it.
    if (change.isNew || active != before.active) {
      change.fields.push_back({"active", change.isNew ? "" : YesOrNo(before.active), YesOrNo(active)});
    }
    if (change.fields.empty()) {
      ++plan_.unchanged;
    } else {
      plan_.changes.push_back(std::move(change));
    }
  }

  /// The member of one place of a line. Retired ones may be paired, but it is remarked.
  const StoredMember& Player(const PairLine& line, std::size_t place) {
    const PairPlayer& player = line.players.at(place);
    const StoredMember* member = roll_.Find(PlaceInFile(file_.name, line.line), player.number, player.nationalNumber);
    if (member == nullptr) {
      Refuse(line, "there is no member number " +
                       (player.number ? std::to_string(*player.number) : player.nationalNumber + " (EBU)") +
                       "; expected members' numbers");
    }
    const PersonName name{member->Value("first"), member->Value("known_as"), member->Value("last")};
    // The name is there only to make sure of the number.
    if (!player.name.empty() && !FitsWholeName(name, player.name, keys_)) {
      Refuse(line, "the number is that of member " + std::to_string(member->number) + ", " + member->Name() +
                       ", but the name here is " + player.name +
                       ", clearly another one; expected that member's name or another number");
    }
    if (member->Value("active") == "n") {
      plan_.remarks.push_back(
          {line.line, "member " + std::to_string(member->number) + ", " + member->Name() + ", is retired"});
    }
    return *member;
  }

  [[noreturn]] void Refuse(const PairLine& line, const std::string& reason) const {
    RefuseImport(file_.name, line.line, reason);
  }

  const NameKeyService& keys_;
  const PairFile& file_;
  MemberRoll roll_;
  ColumnWidths widths_;
  std::map<PairKey, StoredPair> pairs_;
  std::set<PairKey> seen_;
  ImportPlan plan_;
};

}  // namespace

ImportPlan PairImport::Plan(const PairFile& file) {
  return Planner(store_, file).Plan();
}

void PairImport::Apply(const ImportPlan& plan, const ImportProgress& progress) {
  for (std::size_t i = 0; i < plan.changes.size(); ++i) {
    progress(i, plan.changes[i].name);
    Store(plan.changes[i]);
  }
}

/// Stores one change: a new pair first by the operation that all programs use, and then the fields that the file gives.
void PairImport::Store(const RecordChange& change) {
  const std::int32_t first = change.members.front();
  const std::int32_t second = change.members.back();
  // With the mean of the players' handicaps, and in the order of the file; its other fields by the statement below.
  if (change.isNew) MakeRegularPartnership(store_, first, second, kMeanOfPlayers, true, "");
  std::string assignments;
  for (const FieldChange& field : change.fields) {
    const bool isName = field.field == "known_as";
    // The planner has let only these two fields through.
    assignments +=
        (assignments.empty() ? "" : ", ") + (isName ? "KnownAs = " + cDatabase::SQLString(field.after)
                                                    : std::string("Active = ") + (field.after == "y" ? "-1" : "0"));
  }
  store_.Execute("Update Partnerships Set " + assignments + " Where " + PairWhereClause(first, second));
}

}  // namespace tavi::host
