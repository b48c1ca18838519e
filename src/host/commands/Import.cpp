#include "host/commands/Commands.h"

#include <ostream>

#include "facade/ThreadStore.h"
#include "host/imports/MemberImport.h"
#include "host/imports/PairImport.h"
#include "host/input/ClubFiles.h"
#include "host/text/Terminal.h"
#include "store/Transaction.h"

// The commands around an import (host/imports): read and check the file, plan, apply, tell. The order is such that
// every refusal comes before the first change, and that a dry run and a real one make the same plan.
namespace tavi::host {
namespace {

/// A store on the club's folder, open.
/// Opened at once: what the first open of an older file changes is done before the plan looks at it.
std::unique_ptr<cDatabase> OpenStore(const Context& context) {
  std::unique_ptr<cDatabase> store = MakeStore(context.platform);
  store->SetDatabaseFolder(context.ClubFolder());
  store->OpenDB();
  return store;
}

/// The number of a member, or those of a pair.
/// A member's number stays a number; that of a pair is a text of two.
Cell NumbersOf(const RecordChange& change) {
  if (change.members.size() == 1) return std::int64_t{change.members.front()};
  return std::to_string(change.members.front()) + " & " + std::to_string(change.members.back());
}

/// An empty field is shown as nothing, in JSON as null.
Cell TextOrNothing(const std::string& text) {
  return text.empty() ? Cell() : Cell(text);
}

/// A dry run: a line for each field, as it is and as it would be. The sums go to standard error, apart from the list.
void WriteChanges(const Context& context, const ImportPlan& plan) {
  Table table({"Number", "Name", "Change", "Field", "Old", "New"});
  for (const RecordChange& change : plan.changes) {
    const std::string kind = change.isNew ? "added" : "changed";
    for (const FieldChange& field : change.fields) {
      table.Add(
          {NumbersOf(change), change.name, kind, field.field, TextOrNothing(field.before), TextOrNothing(field.after)});
    }
  }
  context.Write(table);
  context.error << "note: nothing was stored; it would be " << plan.Added() << " added, " << plan.Updated()
                << " changed, " << plan.unchanged << " left as they are\n";
}

void WriteFigures(const Context& context, const std::string& path, const ImportPlan& plan) {
  Table table({"File", "Added", "Changed", "Unchanged"});
  table.Add({path, static_cast<std::int64_t>(plan.Added()), static_cast<std::int64_t>(plan.Updated()),
             static_cast<std::int64_t>(plan.unchanged)});
  context.Write(table);
}

/// What was decided for the person, with the line that it is about, and which columns were left out.
void WriteRemarks(const Context& context, const std::string& path, const ImportPlan& plan,
                  const std::vector<std::string>& passedOver) {
  for (const std::string& column : passedOver) {
    context.error << "note: " << Printable(path) << ": the column \"" << Printable(column) << "\" was passed over\n";
  }
  for (const ImportRemark& remark : plan.remarks) {
    context.error << "note: " << Printable(PlaceInFile(path, remark.line) + ": " + remark.text) << '\n';
  }
}

/// Plans an import and applies it as one transaction, or only shows the plan.
/// The reports are written when the file is closed: what they say has been stored is in the file then.
template <typename Import, typename File, typename Planner>
int Run(const Context& context, const ImportRequest& request, const File& file, const Planner& plan) {
  const std::unique_ptr<cDatabase> store = OpenStore(context);
  Import importer(*store);
  ImportPlan planned;
  if (request.dryRun) {
    planned = plan(importer);
  } else {
    // Nobody changes the club between the plan and its application.
    Transaction transaction(*store);
    planned = plan(importer);
    ProgressBar progress(context.error, context.showProgress, planned.changes.size());
    importer.Apply(planned, [&](std::size_t done, const std::string& name) { progress.Show(done, name); });
    transaction.Commit();
  }
  // Closed in any case, a dry run's as well; an error of closing is the command's.
  store->CloseDB(true);
  WriteRemarks(context, request.file, planned, file.passedOver);
  if (request.dryRun) {
    WriteChanges(context, planned);
  } else {
    WriteFigures(context, request.file, planned);
  }
  return kSucceeded;
}

}  // namespace

int ImportMembers(const Context& context, const ImportRequest& request) {
  // Read whole before the club is opened.
  const MemberFile file = ReadMemberFile(request.file, request.ignoreUnknown);
  return Run<MemberImport>(context, request, file,
                           [&](MemberImport& importer) { return importer.Plan(file, request.allowNamesakes); });
}

int ImportPairs(const Context& context, const ImportRequest& request) {
  const PairFile file = ReadPairFile(request.file, request.ignoreUnknown);
  return Run<PairImport>(context, request, file, [&](PairImport& importer) { return importer.Plan(file); });
}

}  // namespace tavi::host
