// The one connection of a store and the count of its uses. Operations call each other, and each opens the file for
// itself: the first OpenDB of a nest opens it and the last CloseDB closes it, while those between only count. What must
// not happen is a use that is counted and never given back, for the file would stay open; so every path counts down,
// also on errors, and an error on the way is never hidden by one of closing.
#include <algorithm>
#include <exception>
#include <limits>

#include "platform/values/Text.h"
#include "store/LayoutCheck.h"
#include "store/OpenUse.h"
#include "store/Values.h"
#include "store/cDatabase.h"
#include "util/Diagnostics.h"
#include "util/Paths.h"

namespace tavi {
namespace {

constexpr const char* kFileName = "ClubMembers.mdb";
/// No system has longer paths.
constexpr std::size_t kLongestFolder = 32'767;
/// Programs read the count as a number of 16 bits.
constexpr std::int16_t kMostUses = std::numeric_limits<std::int16_t>::max();

/// Counts one use less while another error is on its way, which must stay the one that is seen.
void CloseQuietly(cDatabase& database, bool forceClose) noexcept {
  try {
    database.CloseDB(forceClose);
  } catch (...) {
    return;
  }
}

/// A path as an item of the connection string: one that would end the item, or lose blanks in it, is put between
/// quotes, with those in it doubled.
std::string InConnectionText(const std::string& path) {
  if (path.find('\0') != std::string::npos) {
    throw Error(ErrorNumber::InvalidArgument, kStoreSource,
                "The folder's name holds a NUL character; choose another folder.");
  }
  const bool isPlain =
      path.find(';') == std::string::npos && path.find_first_of("\"'") != 0 && Trim(path).size() == path.size();
  if (isPlain) return path;
  return "\"" + ReplaceAll(path, "\"", "\"\"") + "\"";
}

}  // namespace

std::string ConnectionText(const std::string& path) {
  return "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + InConnectionText(path);
}

cDatabase::cDatabase(std::shared_ptr<const Platform> platform, std::vector<FirstOpenStep> firstOpenSteps)
    : platform_(std::move(platform)), firstOpenSteps_(std::move(firstOpenSteps)) {
  WriteDiagnostic("TaviMembership Initialising");
}

cDatabase::~cDatabase() {
  CloseQuietly(*this, true);
}

// Written with a backslash on every system: programs take this text apart. Only the lowest routine of files turns it
// into a path of this system.
std::string cDatabase::DatabaseFilePath() const {
  return PathJoin(folder_, kFileName);
}

// The text is taken over in any case, so that a folder in other letters is shown as it was given last.
void cDatabase::SetDatabaseFolder(const std::string& newFolder) {
  if (!EqualIgnoringCase(newFolder, folder_)) {
    NewDatabase();
    // The pending check will look at the file that is open, as programs know it, and so says nothing of the new one.
    nextFileUnchecked_ = openCount_ > 0;
  }
  folder_ = newFolder;
}

std::string cDatabase::EBUMembersTable() {
  return "EBUMembershipList";
}

// The provider's error is told with the file's name under the component's own number, as programs know it.
void cDatabase::OpenConnection() {
  try {
    connection_ = platform_->databaseProvider->Open(ConnectionText(DatabaseFilePath()));
    openPath_ = DatabaseFilePath();
  } catch (const std::exception& error) {
    // A NUL would end the message.
    const std::string path = ReplaceAll(DatabaseFilePath(), std::string_view("\0", 1), " ");
    const std::string message = "Failed to open membership database " + path + ":\r\n\r\n" + std::string(error.what());
    WriteDiagnostic(message);
    throw Error(ErrorNumber::Component, kStoreSource, message);
  }
}

void cDatabase::OpenDB() {
  if (folder_.size() > kLongestFolder) RequireLength(folder_, kLongestFolder, "the database folder");
  if (folder_.empty()) {
    throw Error(ErrorNumber::Component, kStoreSource, "Attempt to use database before path set.");
  }
  if (openCount_ == 0) {
    OpenConnection();
    // Behind the opening: a file that does not open has used nothing up.
    layoutCheckPending_ = layoutCheckPending_ || nextFileUnchecked_;
    nextFileUnchecked_ = false;
  }
  // A host that never closes what its calculations leave open must not fail in the middle of an evening.
  if (openCount_ < kMostUses) ++openCount_;
  if (!layoutCheckPending_) return;
  // Before the check, whose own statements open the store again.
  layoutCheckPending_ = false;
  try {
    LayoutCheck(*this, fieldLimitMessageShown_).Run();
    for (const FirstOpenStep& step : firstOpenSteps_) step.run(*this);
  } catch (...) {
    CloseQuietly(*this, false);
    throw;
  }
}

void cDatabase::CloseDB(bool ForceClose) {
  if (openCount_ == 0) return;
  // Who closes by force, as ending a walk does, must not take the file away from under a transaction; each of them
  // holds one use of the count and gives it back at its end.
  openCount_ = ForceClose ? transactions_ : std::max(transactions_, static_cast<std::int16_t>(openCount_ - 1));
  if (openCount_ > 0) return;
  // Closed for this store whatever becomes of the call: a second one could not mend what failed.
  const std::unique_ptr<ado::Connection> closing = std::move(connection_);
  closing->Close();
}

// The use is closed in the open, so that an error of writing the file at its end reaches the caller.
void cDatabase::Execute(std::string_view CommandString) {
  OpenUse use(*this);
  connection_->Execute(CommandString);
  use.Close();
}

std::unique_ptr<ado::Recordset> cDatabase::OpenRecordset(std::string_view SQL, ado::CursorType CursorType,
                                                         bool IsTable) {
  return OpenFile().OpenRecordset(SQL, CursorType, ado::LockType::Pessimistic,
                                  IsTable ? ado::SourceKind::TableDirect : ado::SourceKind::CommandText);
}

std::unique_ptr<ado::Recordset> cDatabase::OpenSchema(ado::SchemaKind kind) {
  return OpenFile().OpenSchema(kind);
}

void cDatabase::BeginTransaction() {
  static_cast<void>(OpenFile().BeginTrans());
  ++transactions_;
}

// Counted down behind the calls that end a transaction: one that could not be ended is open still.
void cDatabase::CommitTransaction() {
  OpenFile().CommitTrans();
  --transactions_;
}

void cDatabase::RollbackTransaction() {
  OpenFile().RollbackTrans();
  --transactions_;
}

ado::Connection& cDatabase::OpenFile() {
  if (!connection_) {
    throw Error(ErrorNumber::NoObject, kStoreSource,
                "Object variable not set: a record set needs the open membership database; call OpenDB first.");
  }
  return *connection_;
}

}  // namespace tavi
