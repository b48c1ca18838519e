#include "host/tools/NewClub.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <ostream>

#include "facade/ThreadStore.h"
#include "host/text/PathText.h"
#include "host/tools/Connect.h"
#include "platform/ado/Provider.h"
#include "platform/values/Convert.h"
#include "platform/values/Error.h"
#include "util/Paths.h"

namespace tavi::host {

namespace {

constexpr std::array kTablesOfRecords = {"Members",      "Partnerships", "Competitions",
                                         "MasterPoints", "Results",      "ClubPolicies"};

/// The only column of a statement's rows, with a line for each.
std::string ColumnOf(ado::Connection& connection, const std::string& statement) {
  std::string lines;
  const auto rows = connection.OpenRecordset(statement, ado::CursorType::ForwardOnly, ado::LockType::ReadOnly,
                                             ado::SourceKind::CommandText);
  const std::string& column = rows->Fields().front().name;
  for (; !rows->AtEnd(); rows->MoveNext()) lines += ToText(rows->Get(column)) + '\n';
  return lines;
}

bool IsNewClub(const Context& context, const std::string& file, const ClubIdentity& identity) {
  try {
    const auto connection = Connect(context, file);
    const auto isEmpty = [&](const char* table) {
      return ColumnOf(*connection, std::string("Select Count(*) From ") + table) == "0\n";
    };
    const std::string names = ColumnOf(*connection, "Select ClubName From ClubNames");
    if (identity.name.empty()) return names.empty() && std::ranges::all_of(kTablesOfRecords, isEmpty);
    return names == identity.name + '\n' &&
           ColumnOf(*connection, "Select ClubEBUNumber From ClubNames") == identity.nationalNumber + '\n' &&
           std::ranges::all_of(kTablesOfRecords, isEmpty);
  } catch (const Error&) {
    return false;  // it is no club's file, or in use
  }
}

}  // namespace

void MakeClub(const Context& context, const ClubIdentity& identity) {
  const std::string file = NativePath(context.ClubFile());
  if (std::filesystem::exists(PathOf(file))) {
    WorkFolder::ClearLeftBehind(file);
    if (IsNewClub(context, file, identity)) return;
    throw Error(ErrorNumber::InvalidArgument, "tavi", file + " exists already; choose another folder with --db FOLDER");
  }
  ClubDraft draft(context);
  draft.BeginEmpty(identity);
  draft.TakePlace();
}

int NewClub(const Context& context, const ClubIdentity& identity) {
  // Asked for first: nothing is changed any more when the file is made.
  const std::string file = NativePath(context.ClubFile());
  MakeClub(context, identity);
  Table table({"What", "Value"});
  table.Add({std::string("File"), file});
  table.Add({std::string("Club"), identity.name});
  context.Write(table);
  context.out.flush();
  return kSucceeded;
}

}  // namespace tavi::host
