#include "host/commands/Commands.h"

#include <algorithm>
#include <filesystem>
#include <ostream>

#include "facade/ThreadStore.h"
#include "host/commands/ClubDraft.h"
#include "host/commands/OpenFile.h"
#include "host/commands/WorkFolder.h"
#include "host/json/Json.h"
#include "host/text/PathText.h"
#include "host/text/Terminal.h"
#include "platform/values/Convert.h"
#include "platform/values/Error.h"
#include "platform/values/Text.h"
#include "store/Layout.h"
#include "store/Recovery.h"
#include "util/Paths.h"

// `tavi recover`. The old file may be damaged in any way, and reading it must not make that worse; the club's file may
// be all that is left if the recovery fails. So the old file is copied into the work folder, with its log, and the copy
// is read; and what is saved goes into a draft of the club's file, which takes the place of the file in one step. The
// rules of what is saved, and how, are the store's (store/Recovery.h).
//
// A draft begins with a copy of the club's file, so that its tables of other programs stay; where that file is damaged
// or no club's, with an empty one.
namespace tavi::host {
namespace {

namespace fs = std::filesystem;

/// Lets all messages through but the one that says what the report says too.
class MessagesBesideTheReport : public MessageBoxes {
 public:
  explicit MessagesBesideTheReport(std::shared_ptr<const MessageBoxes> boxes) : boxes_(std::move(boxes)) {}
  // The report lists table by table what that message says in a sentence.
  void Show(MessageBoxIcon icon, const std::string& title, const std::string& text) const override {
    if (title != kRecoveryErrorTitle) boxes_->Show(icon, title, text);
  }

 private:
  std::shared_ptr<const MessageBoxes> boxes_;
};

/// A bar for each table.
class ProgressOfTables : public RecoveryObserver {
 public:
  explicit ProgressOfTables(const Context& context) : context_(context) {}
  void Show(const std::string& table, std::int64_t done, std::int64_t stated) override {
    if (table != table_ || !bar_) {
      bar_.emplace(context_.error, context_.showProgress, static_cast<std::size_t>(stated));
      table_ = table;
    }
    // A damaged file may state fewer rows than it holds.
    bar_->Show(static_cast<std::size_t>(std::min(done, stated)), table);
  }

 private:
  const Context& context_;
  std::string table_;
  std::optional<ProgressBar> bar_;
};

[[noreturn]] void Refuse(const std::string& why) {
  throw Error(ErrorNumber::InvalidArgument, "tavi", why);
}

/// Asked of the system, which knows links and other spellings. Files that are not there are no equals.
void RefuseOwnFile(const RecoverRequest& request, const std::string& clubFile) {
  std::error_code ignored;
  if (fs::equivalent(PathOf(NativePath(request.oldFile)), PathOf(clubFile), ignored)) {
    Refuse(clubFile +
           " is the club's own file. Move it to another place first, or name another folder with --db FOLDER.");
  }
}

[[noreturn]] void RefuseToReplace(const std::string& clubFile) {
  Refuse(clubFile +
         " holds data already. Recovery empties its tables first; with --replace it does so, or name another folder "
         "with --db FOLDER.");
}

/// What a person should know of a table, a line each; nothing for one that came over whole.
std::vector<std::string> DamageOf(const RecoveredTable& table) {
  std::vector<std::string> damage;
  if (!table.isInOldFile) return {"The old file has no such table."};
  if (table.error) damage.push_back(table.error->Description());
  damage.insert(damage.end(), table.remarks.begin(), table.remarks.end());
  if (table.moreRemarks > 0) damage.push_back("(" + std::to_string(table.moreRemarks) + " more)");
  return damage;
}

/// A row for each table; `withDamage` where the output has no room beneath the table for it.
Table Figures(const RecoveryReport& report, bool withDamage) {
  std::vector<std::string> columns{"Table", "Found", "Saved", "Lost", "Values lost"};
  if (withDamage) columns.emplace_back("Damage");
  Table table(columns);
  for (const RecoveredTable& recovered : report.tables) {
    std::vector<Cell> row{recovered.name, recovered.found, recovered.saved, recovered.lost, recovered.valuesLost};
    std::string damage;
    for (const std::string& text : DamageOf(recovered)) damage += (damage.empty() ? "" : "\n") + text;
    if (withDamage) row.emplace_back(damage);
    table.Add(std::move(row));
  }
  return table;
}

void WriteForPeople(const Context& context, const RecoveryReport& report) {
  context.Write(Figures(report, false));
  for (const RecoveredTable& table : report.tables) {
    const std::vector<std::string> damage = DamageOf(table);
    if (!damage.empty()) context.out << '\n' << table.name << '\n';
    for (const std::string& text : damage) context.out << "  " << Printable(text) << '\n';
  }
}

void WriteJson(const Context& context, const RecoveryReport& report) {
  Json tables = Json::Array();
  for (const RecoveredTable& table : report.tables) {
    tables.Add({{"Table", table.name},
                {"Found", table.found},
                {"Saved", table.saved},
                {"Lost", table.lost},
                {"Values lost", table.valuesLost},
                {"Damage", DamageOf(table)}});
  }
  const Json document{{"Tables", tables}, {"Problems", report.problems}};
  context.out << PrintableJson(document.Indented()) << '\n';
}

void Write(const Context& context, const RecoveryReport& report) {
  if (context.format == OutputFormat::JsonText) {
    WriteJson(context, report);
  } else if (context.format == OutputFormat::Table) {
    WriteForPeople(context, report);
  } else {
    context.Write(Figures(report, true));
  }
  for (const std::string& problem : report.problems) context.error << "tavi: " << PrintableLines(problem) << '\n';
}

/// Names the file that the person knows in place of the copy that was worked on.
/// The copy is gone when the person reads the message.
class Naming {
 public:
  Naming(std::string copy, std::string original) : copy_(std::move(copy)), original_(std::move(original)) {}

  [[nodiscard]] Error Of(const Error& error) const {
    return {error.Number(), error.Source(), ReplaceAll(error.Description(), copy_, original_)};
  }
  void Apply(RecoveryReport& report) const {
    for (std::string& problem : report.problems) problem = ReplaceAll(problem, copy_, original_);
    for (RecoveredTable& table : report.tables) {
      if (table.error) table.error = Of(*table.error);
      for (std::string& remark : table.remarks) remark = ReplaceAll(remark, copy_, original_);
    }
  }

 private:
  std::string copy_;
  std::string original_;
};

/// Recovers into the draft.
RecoveryReport RunRecovery(const ClubDraft& draft, const TemporaryCopy& copy, const std::string& oldFile) {
  const Context& context = draft.Inside();
  auto platform = std::make_shared<Platform>(*context.platform);
  // A store of its own, with all of the outside world as it is but the boxes.
  platform->messageBoxes = std::make_shared<MessagesBesideTheReport>(context.platform->messageBoxes);
  const std::unique_ptr<cDatabase> store = MakeStore(std::move(platform));
  store->SetDatabaseFolder(context.ClubFolder());
  ProgressOfTables progress(context);
  Recovery recovery(*store, &progress);
  // Random automatic numbers are negative as often as not; rows that have them are rows like others.
  recovery.AcceptNegativeIdentifiers();
  RecoveryReport report = recovery.Run(copy.Path());
  const Naming naming(copy.Path(), oldFile);
  if (report.failure) throw naming.Of(*report.failure);
  // One table is enough, for a damaged file may have lost the others.
  if (std::ranges::none_of(report.tables, &RecoveredTable::isInOldFile))
    Refuse(oldFile + " is no club's file: it has none of a club's tables. Nothing was changed.");
  naming.Apply(report);
  return report;
}

/// An old file may have none, and then switching the calculation off would find no row to be remembered in.
void RequireHandicapSettings(const ClubDraft& draft) {
  const auto connection = Connect(draft.Inside(), draft.Inside().ClubFile());
  const auto rows = connection->OpenRecordset("HandicalcSettings", ado::CursorType::ForwardOnly,
                                              ado::LockType::ReadOnly, ado::SourceKind::TableDirect);
  const bool isMissing = rows->AtEnd();
  rows->Close();
  if (isMissing) StoreFirstHandicapSettings(*connection);
  connection->Close();
}

/// The club's file changes when all is recovered, in one step. Where it must not change it may hold what is recovered
/// already: so a run that was stopped behind that step can be repeated.
/// The steps: what may be done, the copy of the old file, the draft's beginning, the recovery into it, and the place.
/// Only the last one changes anything that stays.
RecoveryReport RecoverInto(const Context& context, ClubDraft& draft, const RecoverRequest& request,
                           const std::string& clubFile) {
  // Decided before anything is begun, though a refusal waits until it is known whether the file is not just like that.
  const bool mayChange = request.replace || !draft.CurrentHoldsData();
  const TemporaryCopy copy(draft.Folder(), PathOf(NativePath(request.oldFile)));
  if (copy.IsLogLeftOut()) {
    context.error << "tavi: the log beside " << Printable(request.oldFile)
                  << " does not belong to it and was left out; both stay as they are\n";
  }
  const bool isKept = !draft.IsFirst() && draft.BeginWithCurrent();
  if (!isKept && !mayChange) RefuseToReplace(clubFile);
  if (!isKept) draft.BeginEmpty({});
  RecoveryReport report = RunRecovery(draft, copy, request.oldFile);
  RequireHandicapSettings(draft);
  // A run that was stopped behind its last step has left exactly this; refusing it would be wrong, and so would be to
  // do it once more to a file that has been changed since.
  if (!mayChange && !draft.IsLikeCurrent()) RefuseToReplace(clubFile);
  if (mayChange) draft.TakePlace();
  if (!draft.IsFirst() && !isKept) {
    context.error << "tavi: " << Printable(clubFile) << " was damaged itself or no club's, and has been made anew\n";
  }
  return report;
}

}  // namespace

int Recover(const Context& context, const RecoverRequest& request) {
  try {
    const std::string clubFile = NativePath(context.ClubFile());
    // Before the draft, which keeps the club's file for itself.
    RefuseOwnFile(request, clubFile);
    ClubDraft draft(context);
    const RecoveryReport report = RecoverInto(context, draft, request, clubFile);
    Write(context, report);
    return report.IsSomethingLost() ? kSomethingLost : kSucceeded;
  } catch (const Error& error) {
    context.error << "tavi: " << PrintableLines(error.Description()) << '\n';
  } catch (const std::exception& error) {
    context.error << "tavi: " << error.what() << '\n';
  }
  return kNothingRecovered;
}

}  // namespace tavi::host
