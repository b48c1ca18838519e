#include "host/tools/Import.h"

#include <ostream>

#include "host/input/MemberFile.h"
#include "host/text/ProgressBar.h"
#include "host/tools/ColumnWidths.h"
#include "platform/values/Text.h"
#include "store/cDatabase.h"

namespace tavi::host {
namespace {

struct ColumnValue {
  const char* column;
  std::string literal;
};

std::string Text(const std::string& value) {
  return cDatabase::SQLString(value);
}

/// The columns that a members file fills, as SQL literals.
std::vector<ColumnValue> ColumnsOf(const ImportedMember& member, const NameKeyService& keys) {
  return {{"EBUNumber", Text(member.nationalNumber)},
          {"Title", Text(member.title)},
          {"FirstName", Text(member.firstName)},
          {"MiddleInitials", Text(member.initials)},
          {"LastName", Text(member.lastName)},
          {"FuzzedFirstName", Text(keys.Key(NameKeyMode::FirstName, member.firstName))},
          {"FuzzedLastName", Text(keys.Key(NameKeyMode::Surname, member.lastName))},
          {"KnownAs", Text(member.knownAs)},
          {"Sex", std::to_string(member.sex)},
          {"email", Text(member.email)},
          {"HouseID", Text(member.house)},
          {"Address", Text(member.address)},
          {"PostCode", Text(member.postCode)},
          {"HomePhone", Text(member.homePhone)},
          {"MobilePhone", Text(member.mobilePhone)},
          {"MemberType", Text(member.memberType)},
          {"DateOfJoining", cDatabase::SQLDate(member.joined)},
          {"Active", member.active ? "-1" : "0"}};
}

std::string InsertStatement(const ImportedMember& member, const std::vector<ColumnValue>& columns) {
  std::string names = "MembershipNumber";
  std::string values = std::to_string(member.number);
  for (const ColumnValue& column : columns) {
    names += std::string(", ") + column.column;
    values += ", " + column.literal;
  }
  return "Insert into Members (" + names + ") Values (" + values + ")";
}

std::string UpdateStatement(const ImportedMember& member, const std::vector<ColumnValue>& columns) {
  std::string assignments;
  for (const ColumnValue& column : columns) {
    assignments += (assignments.empty() ? "" : ", ") + std::string(column.column) + " = " + column.literal;
  }
  return "Update Members Set " + assignments + " Where MembershipNumber = " + std::to_string(member.number);
}

void RequireWidths(const ColumnWidths& widths, const std::string& path, const ImportedMember& member) {
  const std::string where = path + ":" + std::to_string(member.line);
  const std::pair<const char*, const std::string*> texts[] = {{"EBUNumber", &member.nationalNumber},
                                                              {"Title", &member.title},
                                                              {"FirstName", &member.firstName},
                                                              {"MiddleInitials", &member.initials},
                                                              {"LastName", &member.lastName},
                                                              {"KnownAs", &member.knownAs},
                                                              {"email", &member.email},
                                                              {"HouseID", &member.house},
                                                              {"Address", &member.address},
                                                              {"PostCode", &member.postCode},
                                                              {"HomePhone", &member.homePhone},
                                                              {"MobilePhone", &member.mobilePhone},
                                                              {"MemberType", &member.memberType}};
  for (const auto& [column, text] : texts) widths.Require(where, column, *text);
}

/// The store on the club's folder, open until the guard goes.
class OpenStore {
 public:
  explicit OpenStore(const Context& context) : store(context.platform) {
    store.SetDatabaseFolder(context.ClubFolder());
    store.OpenDB();
  }
  ~OpenStore() = default;
  OpenStore(const OpenStore&) = delete;
  OpenStore& operator=(const OpenStore&) = delete;

  cDatabase store;
};

}  // namespace

int ImportMembers(const Context& context, const std::string& path) {
  const std::vector<ImportedMember> members = ReadMemberFile(path);
  OpenStore open(context);
  const ColumnWidths widths(*context.platform, open.store.DatabaseFilePath(), "Members");
  for (const ImportedMember& member : members) RequireWidths(widths, path, member);
  std::int64_t added = 0;
  ProgressBar progress(context.error, context.showProgress, members.size());
  for (std::size_t i = 0; i < members.size(); ++i) {
    const ImportedMember& member = members[i];
    progress.Show(i, member.firstName + " " + member.lastName);
    const bool known = open.store.MemberExists(member.number);
    const std::vector<ColumnValue> columns = ColumnsOf(member, *context.platform->nameKeyService);
    open.store.Execute(known ? UpdateStatement(member, columns) : InsertStatement(member, columns));
    added += known ? 0 : 1;
  }
  open.store.SetNameUniquenessFlags("");
  open.store.CloseDB(true);
  Table table({"File", "Added", "Updated"});
  table.Add({path, added, static_cast<std::int64_t>(members.size()) - added});
  table.Write(context.out, context.format);
  return kSucceeded;
}

int ImportPairs(const Context& context, const std::string& path) {
  const std::vector<ImportedPair> pairs = ReadPairFile(path);
  OpenStore open(context);
  const ColumnWidths widths(*context.platform, open.store.DatabaseFilePath(), "Partnerships");
  for (const ImportedPair& pair : pairs) {
    const std::string where = path + ":" + std::to_string(pair.line);
    widths.Require(where, "KnownAs", pair.knownAs);
    for (const std::int32_t number : {pair.firstNumber, pair.secondNumber}) {
      if (open.store.MemberExists(number)) continue;
      throw Error(ErrorNumber::InvalidArgument, "tavi",
                  where + ": there is no member number " + std::to_string(number) + "; expected members' club numbers");
    }
  }
  std::int64_t added = 0;
  ProgressBar progress(context.error, context.showProgress, pairs.size());
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    const ImportedPair& pair = pairs[i];
    progress.Show(i, std::to_string(pair.firstNumber) + " and " + std::to_string(pair.secondNumber));
    std::string name;
    double handicap = 0.0;
    bool inactive = false;
    const bool known = open.store.IsRegularPartnership(pair.firstNumber, pair.secondNumber, name, handicap, inactive);
    open.store.MakeRegularPartnership(pair.firstNumber, pair.secondNumber, known ? handicap : -1.0, false,
                                      pair.knownAs);
    open.store.Execute("Update Partnerships Set KnownAs = " + Text(pair.knownAs) +
                       ", Active = " + (pair.active ? "-1" : "0") + " Where " +
                       cDatabase::PairWhereClause(pair.firstNumber, pair.secondNumber));
    added += known ? 0 : 1;
  }
  open.store.CloseDB(true);
  Table table({"File", "Added", "Updated"});
  table.Add({path, added, static_cast<std::int64_t>(pairs.size()) - added});
  table.Write(context.out, context.format);
  return kSucceeded;
}

}  // namespace tavi::host
