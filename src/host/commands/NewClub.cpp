#include <algorithm>
#include <array>
#include <filesystem>
#include <ostream>
#include <sstream>

#include "facade/ThreadStore.h"
#include "host/commands/Commands.h"
#include "host/commands/OpenFile.h"
#include "host/commands/Score.h"
#include "host/results/UsebioReader.h"
#include "host/text/PathText.h"
#include "platform/ado/Provider.h"
#include "platform/values/Convert.h"
#include "platform/values/Error.h"
#include "util/Paths.h"

// `tavi new` and `tavi sample`. Making a club can be called again wherever it was stopped: a file that is there is
// looked at, and one that is just what would be made counts as made. Nothing marks that; see ClubDraft.
namespace tavi::host {

namespace {

// Where a club's records are. The other tables may have rows in a new file, too.
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

/// True for a file with this name and number and no records. A file without a name fits an identity without one.
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
    // A run that was stopped right after its last step has left the folder.
    WorkFolder::ClearLeftBehind(file);
    if (IsNewClub(context, file, identity)) return;
    throw Error(ErrorNumber::InvalidArgument, "tavi", file + " exists already; choose another folder with --db FOLDER");
  }
  // Nothing lies in the place until TakePlace.
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

namespace {

// How the command is called where a sample club is made.
#ifdef _WIN32
constexpr const char* kCommand = "tavi";
#else
constexpr const char* kCommand = "./run";
#endif

/// A folder that is not there yet.
/// In the folder from which the command was called; an earlier sample stays.
std::string NewFolder() {
  const std::string stem = TextOf(std::filesystem::current_path() / "sample-club");
  std::string folder = stem;
  for (int number = 2; std::filesystem::exists(PathOf(folder)); ++number) folder = stem + "-" + std::to_string(number);
  return folder;
}

/// The evenings of a season, in the order of their names.
std::vector<std::string> ResultFiles(const std::string& from) {
  std::vector<std::string> files;
  const std::string folder = JoinPath(from, "evenings");
  std::error_code unreadable;
  for (const std::string& name : NamesIn(folder, unreadable)) {
    if (name.ends_with(".xml")) files.push_back(JoinPath(folder, name));
  }
  if (files.empty()) {
    throw Error(ErrorNumber::InvalidArgument, "tavi", folder + " holds no result files; expected USEBIO files (.xml)");
  }
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

int MakeSample(Context context, const std::string& from) {
  // Looked for first: without them nothing is made.
  const std::vector<std::string> files = ResultFiles(from);
  // Without --db a sample never goes to the club that is set for this machine.
  if (context.folder.empty()) context.folder = NewFolder();
  std::ostringstream unshown;
  // The steps write tables of their own, which nobody wants here; notes and errors are still seen.
  Context quiet{context.in, unshown, context.error};
  quiet.showProgress = context.showProgress;
  quiet.folder = context.folder;
  quiet.platform = context.platform;
  MakeClub(quiet, {"Sample Bridge Club", ""});
  ImportMembers(quiet, {JoinPath(from, "members.csv")});
  ImportPairs(quiet, {JoinPath(from, "pairs.csv")});
  const std::unique_ptr<MembershipDatabase> club = context.OpenClub();
  const std::vector<ScoredFile> scored = ScoreFiles(context, *club, files);
  for (const ScoredFile& file : scored) {
    // A sample of which a part is missing would be no sample.
    if (!file.error.empty()) throw Error(ErrorNumber::InvalidArgument, "tavi", file.error);
  }
  for (const ScoredEvent& event : scored.back().events) WriteRanking(context, event);
  if (context.format == OutputFormat::Table) {
    context.out << '\n'
                << files.size() << " evenings scored. The club's file is\n  " << NativePath(context.ClubFile())
                << "\nLook further with\n  " << kCommand << " --db " << context.folder << " handicaps\n";
  } else {
    // Beside the output, which is the ranking alone for a program.
    context.error << NativePath(context.ClubFile()) << '\n';
  }
  return kSucceeded;
}

}  // namespace tavi::host
