#include "host/commands/ClubDraft.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <ostream>
#include <vector>

#include "access/catalog/Check.h"
#include "access/file/Replacement.h"
#include "composition/Composition.h"
#include "facade/ThreadStore.h"
#include "host/commands/OpenFile.h"
#include "host/text/PathText.h"
#include "platform/values/Convert.h"
#include "platform/values/Error.h"
#include "platform/values/Text.h"
#include "store/Layout.h"
#include "util/Paths.h"

// How a club's file comes into being or is replaced without ever being half of itself:
//
//   1. The work folder is entered, and a file in the place is opened alone, so that nobody changes it meanwhile.
//   2. The draft is made in the folder: empty, or as a copy of the file in the place.
//   3. The caller fills it, by the same operations as ever; it is a club's file in its own folder for them.
//   4. TakePlace checks it, flushes it and renames it into the place, where it appears in one step.
//
// A stop at any point leaves the file in the place as it was, or the new one whole, and in the folder only what the
// next command clears. Because nothing marks how far a run came, a second one tells by contents whether it is done.
namespace tavi::host {
namespace {

/// Where the file really lies: a link in the place stays a link, and the folder stands beside the file itself.
std::string PlaceOf(const Context& context) {
  return access::NativeFileSystem()->CanonicalPath(NativePath(context.ClubFile()));
}

/// The same streams and outside world, another club.
Context InFolder(const Context& context, const std::string& folder) {
  Context inside = context;
  inside.folder = folder;
  return inside;
}

/// Raises ProviderFailure while anybody else has the file open.
std::unique_ptr<access::Database> OpenAlone(const std::shared_ptr<access::FileSystem>& fileSystem,
                                            const std::string& path) {
  access::PagerOptions options;
  options.alone = true;
  return std::make_unique<access::Database>(access::Pager::Open(fileSystem, path, options));
}

/// True when rows of another table may forbid that rows of this one are deleted.
bool IsReferredTo(access::Database& file, const std::string& table) {
  return std::ranges::any_of(file.Relationships(), [&](const access::Relationship& relationship) {
    return relationship.enforced && EqualIgnoringCase(relationship.primaryTable, table);
  });
}

// The number stands beside the name.
void StoreNationalNumber(const Context& context, const std::string& number) {
  if (number.empty()) return;
  // There is no operation for this number, so it is a statement of the store. A new file has one row of names at most.
  const std::unique_ptr<cDatabase> store = MakeStore(context.platform);
  store->SetDatabaseFolder(context.ClubFolder());
  store->Execute("Update ClubNames Set ClubEBUNumber = " + cDatabase::SQLString(number));
}

/// The rows of all tables of users, as texts in ascending order.
/// In order, because a recovery that was repeated may put the same rows on other pages. The names of the columns are
/// rows among others: a table with another layout is another table.
std::map<std::string, std::vector<std::string>> RowsOf(access::Database& file) {
  const access::ReadStatement statement(file.GetPager());
  std::map<std::string, std::vector<std::string>> tables;
  for (const access::CatalogEntry& entry : file.Tables()) {
    const std::shared_ptr<access::Table> table = entry.isSystem ? nullptr : file.FindTable(entry.name);
    if (table == nullptr) continue;
    std::vector<std::string>& rows = tables[entry.name];
    for (const access::Column& column : table->Columns()) rows.push_back(column.definition.name);
    for (auto row = table->Next(std::nullopt); row.has_value(); row = table->Next(row)) {
      std::string text;
      // A null is one NUL, an empty text two, so that they differ.
      for (const Value& value : table->Read(*row)) text += (IsNull(value) ? "" : ToText(value) + '\0') + '\0';
      rows.push_back(std::move(text));
    }
    std::ranges::sort(rows);
  }
  return tables;
}

}  // namespace

ClubDraft::ClubDraft(const Context& context)
    : context_(context),
      fileSystem_(access::NativeFileSystem()),
      place_(PlaceOf(context)),
      folder_(place_),
      file_(folder_.Draft()),
      inside_(InFolder(context, folder_.Path())) {
  if (fileSystem_->Exists(place_)) current_ = OpenAlone(fileSystem_, place_);
}

void ClubDraft::BeginEmpty(const ClubIdentity& identity) {
  CreateEmptyDatabase(file_, context_.platform->clock->Now());
  const std::unique_ptr<ado::Connection> connection = Connect(inside_, file_);
  // Tables and columns as of today; then the name, through the operation that also stores its prefix.
  CreateBaseFile(*connection);
  connection->Close();
  const std::unique_ptr<MembershipDatabase> club = inside_.OpenClub();
  if (!identity.name.empty()) club->SetClubName(identity.name);
  club->CloseDatabase();
  StoreNationalNumber(inside_, identity.nationalNumber);
}

bool ClubDraft::BeginWithCurrent() {
  const access::CheckResult result = access::CheckFile(*current_, access::CheckKind::Ordinary);
  // Rows that refer to missing ones are the club's contents, which a copy carries over as they are.
  const bool isSound = std::ranges::all_of(
      result.findings, [](const auto& finding) { return finding.part == access::CheckPart::Relationship; });
  const access::ReadStatement statement(current_->GetPager());
  // A file that was made by hand, or left by an older version that was stopped, may have no tables.
  if (!isSound || current_->FindTable("Members") == nullptr) return false;
  // Its log needs no copy: opening it alone has brought that in.
  access::CopyFile(*fileSystem_, *fileSystem_->Open(place_, access::FileSystem::OpenMode::ReadOnly), file_);
  BeginNumbersAnew();
  return true;
}

// The rows of these tables are going to be replaced, and numbered as in a file that never had any: then it is the same
// whether a recovery that was stopped had come to its end or not. Where a relationship has a say in it the rows are
// left to the recovery, which deletes them by statements.
void ClubDraft::BeginNumbersAnew() const {
  const std::unique_ptr<access::Database> draft = OpenAlone(fileSystem_, file_);
  access::WriteStatement statement(draft->GetPager());
  for (const char* name : {"ClubNames", "Competitions", "MasterPoints"}) {
    const std::shared_ptr<access::Table> table = draft->FindTable(name);
    if (table == nullptr || IsReferredTo(*draft, name)) continue;
    // The place of a row that was deleted is still known, so that the walk can go on from it.
    for (auto row = table->Next(std::nullopt); row.has_value(); row = table->Next(row)) table->Delete(*row);
    access::SetLastAutoNumber(draft->GetPager(), table->Definition(), 0);
  }
  statement.Commit();
  draft->GetPager().Close();
}

bool ClubDraft::CurrentHoldsData() const {
  if (!current_) return false;
  const access::ReadStatement statement(current_->GetPager());
  try {
    return std::ranges::any_of(current_->Tables(), [this](const access::CatalogEntry& entry) {
      if (entry.isSystem || entry.isLinked || EqualIgnoringCase(entry.name, cDatabase::EBUMembersTable())) return false;
      // A new file has one row of handicap settings. The governing body's list can be brought in again.
      const std::uint32_t rowsOfANewClub = EqualIgnoringCase(entry.name, "HandicalcSettings") ? 1 : 0;
      return current_->OpenTable(entry.name)->RowCount() > rowsOfANewClub;
    });
  } catch (const Error&) {
    // A table that cannot be counted may hold anything.
    return true;
  }
}

bool ClubDraft::IsLikeCurrent() const {
  if (!current_) return false;
  const std::unique_ptr<access::Database> draft = OpenAlone(fileSystem_, file_);
  return RowsOf(*draft) == RowsOf(*current_);
}

void ClubDraft::TakePlace() {
  RequireSound();
  // Before the rename, which may reach the disk earlier than the contents would.
  fileSystem_->Open(file_, access::FileSystem::OpenMode::ReadWrite)->Sync();
  if (current_) {
    // The draft is as private as its folder; the club's file is as open as it was.
    fileSystem_->CopyPermissions(place_, file_);
    access::ReplaceFile(*fileSystem_, file_, place_, current_->GetPager());
    return;
  }
  // There was none at the beginning, so nothing holds the place: it is looked at once more just before.
  if (fileSystem_->Exists(place_))
    throw Error(ErrorNumber::InvalidArgument, "tavi", place_ + " has been made by another program meanwhile");
  // A log that lies there belongs to some earlier file of the name, and would be met by the first opening of the new
  // one.
  const std::string aside = access::PlaceFile(*fileSystem_, file_, place_);
  if (!aside.empty()) {
    context_.error << "tavi: the log of a file that is no more lay in the place of the new one's; it is now "
                   << Printable(aside) << '\n';
  }
}

// The file is open alone for it, so that its log, if one were left, is in it.
void ClubDraft::RequireSound() const {
  const std::unique_ptr<access::Database> draft = OpenAlone(fileSystem_, file_);
  for (const access::CheckFinding& finding : access::CheckFile(*draft, access::CheckKind::Ordinary).findings) {
    if (finding.part == access::CheckPart::Relationship) continue;
    throw Error(ErrorNumber::ProviderFailure, "tavi",
                place_ + " stays as it is, because the new file was not right: " + finding.text);
  }
  draft->GetPager().Close();
}

}  // namespace tavi::host
