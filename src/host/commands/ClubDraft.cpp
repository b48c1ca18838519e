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

namespace tavi::host {
namespace {

std::string PlaceOf(const Context& context) {
  return access::NativeFileSystem()->CanonicalPath(NativePath(context.ClubFile()));
}

Context InFolder(const Context& context, const std::string& folder) {
  Context inside = context;
  inside.folder = folder;
  return inside;
}

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
  const std::unique_ptr<cDatabase> store = MakeStore(context.platform);
  store->SetDatabaseFolder(context.ClubFolder());
  store->Execute("Update ClubNames Set ClubEBUNumber = " + cDatabase::SQLString(number));
}

/// The rows of all tables of users, as texts in ascending order.
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
  CreateBaseFile(*connection);
  connection->Close();
  const std::unique_ptr<MembershipDatabase> club = inside_.OpenClub();
  if (!identity.name.empty()) club->SetClubName(identity.name);
  club->CloseDatabase();
  StoreNationalNumber(inside_, identity.nationalNumber);
}

bool ClubDraft::BeginWithCurrent() {
  const access::CheckResult result = access::CheckFile(*current_, access::CheckKind::Ordinary);
  const bool isSound = std::ranges::all_of(
      result.findings, [](const auto& finding) { return finding.part == access::CheckPart::Relationship; });
  const access::ReadStatement statement(current_->GetPager());
  // A file that was made by hand, or left by an older version that was stopped, may have no tables.
  if (!isSound || current_->FindTable("Members") == nullptr) return false;
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
      const std::uint32_t rowsOfANewClub = EqualIgnoringCase(entry.name, "HandicalcSettings") ? 1 : 0;
      return current_->OpenTable(entry.name)->RowCount() > rowsOfANewClub;
    });
  } catch (const Error&) {
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
  fileSystem_->Open(file_, access::FileSystem::OpenMode::ReadWrite)->Sync();
  if (current_) {
    fileSystem_->CopyPermissions(place_, file_);
    access::ReplaceFile(*fileSystem_, file_, place_, current_->GetPager());
    return;
  }
  if (fileSystem_->Exists(place_))
    throw Error(ErrorNumber::InvalidArgument, "tavi", place_ + " has been made by another program meanwhile");
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
