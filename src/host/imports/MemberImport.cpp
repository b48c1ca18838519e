#include "host/imports/MemberImport.h"

#include "host/imports/MemberFields.h"
#include "members/Members.h"
#include "names/MemberValues.h"
#include "names/NameColumns.h"

// A plan for members, applied: a statement for each record, all within the caller's transaction. Names bring two things
// with them that are not in the plan: the sound-alike keys, which are stored beside the names in the same statement,
// and how much of a name tells it from others, which depends on all names together and is found out once, at the end.
namespace tavi::host {
namespace {

struct ColumnLiteral {
  std::string column;
  std::string literal;
};

/// The column of a changed field, and that of the sound-alike key that goes with it.
std::vector<ColumnLiteral> LiteralsOf(const FieldChange& change, const NameKeyService& keys) {
  const MemberField& field = MemberFieldNamed(change.field);
  std::vector<ColumnLiteral> literals{{field.column, LiteralOf(field, change.after)}};
  if (change.field == "first") {
    literals.push_back({"FuzzedFirstName", cDatabase::SQLString(keys.Key(NameKeyMode::FirstName, change.after))});
  }
  if (change.field == "last") {
    literals.push_back({"FuzzedLastName", cDatabase::SQLString(keys.Key(NameKeyMode::Surname, change.after))});
  }
  return literals;
}

/// Whether a change bears on how much of a name tells it from others.
/// A retired member does not count among the names that have to be told apart, so `active` matters as well.
bool TouchesUniqueness(const RecordChange& change) {
  for (const FieldChange& field : change.fields) {
    if (field.field == "first" || field.field == "last" || field.field == "active") return true;
  }
  return change.isNew;
}

}  // namespace

ImportPlan MemberImport::Plan(const MemberFile& file, bool allowNamesakes) {
  return MemberPlanner(store_, file).Plan(allowNamesakes);
}

void MemberImport::Apply(const ImportPlan& plan, const ImportProgress& progress) {
  bool touchesUniqueness = false;
  for (std::size_t i = 0; i < plan.changes.size(); ++i) {
    const RecordChange& change = plan.changes[i];
    // Before the work, as it shows what one waits for.
    progress(i, change.name);
    if (change.isNew) {
      Add(change);
    } else {
      Update(change);
    }
    touchesUniqueness = touchesUniqueness || TouchesUniqueness(change);
  }
  if (touchesUniqueness) SetNameUniquenessFlags(store_, "");
}

void MemberImport::Add(const RecordChange& change) {
  // An empty text is stored where other parts of the component would store one; a date that is not known is null.
  // By column: a field of the plan takes the place of the empty value.
  std::map<std::string, std::string> literals{{"FuzzedFirstName", "''"}, {"FuzzedLastName", "''"}};
  for (const MemberField& field : MemberFields()) literals[field.column] = LiteralOf(field, "");
  for (const FieldChange& field : change.fields) {
    for (ColumnLiteral& part : LiteralsOf(field, *store_.GetPlatform().nameKeyService)) {
      literals[part.column] = std::move(part.literal);
    }
  }
  // A newcomer begins at the neutral handicap.
  std::string names = "MembershipNumber, Handicap";
  std::string values =
      std::to_string(change.members.front()) + ", " + cDatabase::SQLNumber(kNeutralHandicap, "the handicap");
  for (const auto& [column, literal] : literals) {
    names += ", " + column;
    values += ", " + literal;
  }
  store_.Execute("Insert into Members (" + names + ") Values (" + values + ")");
}

void MemberImport::Update(const RecordChange& change) {
  std::string assignments;
  for (const FieldChange& field : change.fields) {
    for (const ColumnLiteral& part : LiteralsOf(field, *store_.GetPlatform().nameKeyService)) {
      assignments += (assignments.empty() ? "" : ", ") + part.column + " = " + part.literal;
    }
  }
  store_.Execute("Update Members Set " + assignments + " Where " + NumberIs(change.members.front()));
}

}  // namespace tavi::host
