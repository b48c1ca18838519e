#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Platform.h"
#include "platform/ado/Provider.h"
#include "platform/values/Date.h"
#include "platform/values/Error.h"
#include "store/RecoveryReport.h"

namespace tavi {

/// The source of the errors that the component raises itself.
inline constexpr const char* kStoreSource = "cDatabase";

/// The text by which the database provider opens a file. Raises InvalidArgument for a path that cannot be written
/// there.
[[nodiscard]] std::string ConnectionText(const std::string& path);

class cDatabase;

/// Something that is brought up to date in a file that another program, or another version of this one, may have
/// written. What that is the rooms above the store know, and hand over.
struct FirstOpenStep {
  std::string name;  ///< for messages: "refreshing the uniqueness flags of names"
  std::function<void(cDatabase&)> run;
};

/// The store: owns the connection to the membership database file "ClubMembers.mdb" of one folder, through which
/// everything else reads and writes. One belongs to each thread; it is used on that thread only. The file is opened by
/// the first operation that needs it and closed by the last one that counted it open.
///
/// Errors: those that the store raises itself have the number 0x80040000 and the source "cDatabase"; errors of the
/// provider pass on unchanged, after the open count has been balanced where an operation's comment says so.
class cDatabase {
 public:
  /// Writes the diagnostics line "TaviMembership Initialising". The folder is empty, the layout check pending. The
  /// steps are taken in their order behind each layout check, and when a recovery has filled the file.
  cDatabase(std::shared_ptr<const Platform> platform, std::vector<FirstOpenStep> firstOpenSteps);
  /// Closes the file whatever the open count; swallows errors.
  ~cDatabase();
  cDatabase(const cDatabase&) = delete;
  cDatabase& operator=(const cDatabase&) = delete;

  [[nodiscard]] const Platform& GetPlatform() const { return *platform_; }
  [[nodiscard]] const std::vector<FirstOpenStep>& FirstOpenSteps() const { return firstOpenSteps_; }

  // --- Location and connection (store/Connection.cpp) ----------------------------------------------------------------

  /// The folder joined with "ClubMembers.mdb".
  [[nodiscard]] std::string DatabaseFilePath() const;
  /// The same of the file that operations use: while one is open, that of the folder that was set when it was opened.
  [[nodiscard]] std::string CurrentFilePath() const { return connection_ ? openPath_ : DatabaseFilePath(); }
  [[nodiscard]] const std::string& DatabaseFolder() const { return folder_; }
  /// A folder that differs (ignoring case) makes the layout check pending again. While the file is open everything goes
  /// on with that file until it is closed, the pending check too; the other folder's own file is then checked at its
  /// first opening.
  void SetDatabaseFolder(const std::string& newFolder);
  /// Makes the layout check pending.
  void NewDatabase() { layoutCheckPending_ = true; }
  /// "EBUMembershipList".
  [[nodiscard]] static std::string EBUMembersTable();
  /// Opens the file or counts one more use. The first open after the folder was set checks the layout and takes the
  /// first open steps. Raises "Attempt to use database before path set.", "Failed to open membership database ..." and
  /// what a step raises; after an error the count is as before. The count has 16 bits: at 32767 the file stays open and
  /// the count stands still.
  void OpenDB();
  /// Counts one use less, or all of them, and closes the file at zero. On a closed store it does nothing. Within
  /// transactions the file stays open until they have ended: each of them keeps the use that it counted.
  void CloseDB(bool ForceClose);
  /// How many uses are outstanding; 0: the file is closed.
  [[nodiscard]] std::int16_t OpenCount() const { return openCount_; }
  /// Runs one statement between an OpenDB and a CloseDB; the count is balanced on errors too.
  void Execute(std::string_view CommandString);
  /// Opens a record set on the open connection, for update. IsTable: `SQL` is a table's name. Does not open the file
  /// itself: raises NoObject on a closed store.
  [[nodiscard]] std::unique_ptr<ado::Recordset> OpenRecordset(std::string_view SQL,
                                                              ado::CursorType CursorType = ado::CursorType::ForwardOnly,
                                                              bool IsTable = false);
  /// The tables, columns or indexes of the open file.
  [[nodiscard]] std::unique_ptr<ado::Recordset> OpenSchema(ado::SchemaKind kind);

  // --- Transactions (store/Connection.cpp; store/Transaction.h has the guard that operations use) --------------------

  /// Begins a transaction on the open file, within another one when there is one. Raises NoObject on a closed store; so
  /// do the next two.
  void BeginTransaction();
  /// Ends the innermost transaction and keeps its changes; those of the outermost are stored, all or none. After an
  /// error it is still open, to be rolled back.
  void CommitTransaction();
  /// Ends the innermost transaction and undoes its changes.
  void RollbackTransaction();

  // --- SQL literals (store/Values.cpp) -------------------------------------------------------------------------------

  /// The day number, rounded to the nearest day (ties to even), as plain decimal text: callers compare date columns
  /// with it. Raises InvalidArgument for a date outside the years 100 to 9999.
  [[nodiscard]] static std::string SQLDate(Date SomeDate);
  /// A quoted text: trimmed, "%", carriage return and line feed escaped as %p, %c, %l, quotes doubled. An empty text
  /// becomes a single blank when EnsureNotEmpty. Raises InvalidArgument for a text that no statement can hold (60,000
  /// characters).
  [[nodiscard]] static std::string SQLString(std::string_view StringValue, bool EnsureNotEmpty = false);
  /// A text as a column written through SQLString holds it: trimmed and escaped, without quotes.
  [[nodiscard]] static std::string StoredText(std::string_view text);
  /// The text that StoredText was made of, but for the blanks around it.
  [[nodiscard]] static std::string PlainText(std::string_view stored);
  /// The decimal text of a number, which the database reads back as the same one. Raises InvalidArgument for one that a
  /// file cannot hold (RequireNumber).
  [[nodiscard]] static std::string SQLNumber(double Number, const std::string& What);

  // --- Field readers (store/Values.cpp): null gives the default; a failure the zero value of the type, no error
  // -

  [[nodiscard]] static std::string GetTextField(const ado::Recordset& rs, std::string_view FieldName,
                                                bool Trimmed = false, const std::string& DefaultIfEmpty = "");
  [[nodiscard]] static bool GetBooleanField(const ado::Recordset& rs, std::string_view FieldName, bool Default = false);
  [[nodiscard]] static std::int32_t GetNumericField(const ado::Recordset& rs, std::string_view FieldName,
                                                    std::int32_t Default = 0);
  [[nodiscard]] static double GetNonIntegerField(const ado::Recordset& rs, std::string_view FieldName,
                                                 double Default = 0.0);
  /// The default loses its time of day.
  [[nodiscard]] static Date GetDateField(const ado::Recordset& rs, std::string_view FieldName, Date DefaultDate);
  /// True when the value is not 0.
  [[nodiscard]] static bool BoolValue(std::int16_t bValue) { return bValue != 0; }
  /// BoolValue of a check box's value.
  [[nodiscard]] static bool CheckBoxValue(std::int16_t cb) { return BoolValue(cb); }

  // --- Settings record (store/SettingsRecord.cpp) --------------------------------------------------------------------

  /// The prefix of certificate numbers; when none is stored it is derived from the club's name ("MP" without one) and
  /// stored.
  [[nodiscard]] std::string MPCertificatePrefix();
  /// Prefix and at least five digits: "BC00042".
  [[nodiscard]] std::string FullCertificateNumber(std::int32_t NumericPart);
  /// Counts one further and returns the full number.
  [[nodiscard]] std::string NextMPCertificateNumber();
  [[nodiscard]] std::int32_t GetLastMPCertificateNo();
  void ResetLastMPCertificateNo(std::int32_t LastCertNo);
  [[nodiscard]] std::int32_t NextMPUploadNumber();
  /// The initials of the first four words of the club's name, or `DefaultIfNone`.
  [[nodiscard]] std::string DefaultMPPrefix(const std::string& DefaultIfNone);
  [[nodiscard]] std::int16_t MasterPointIssueMethod();
  void SetMasterPointIssueMethod(std::int16_t NewMethod);
  [[nodiscard]] std::string CountyList();
  void SetCountyList(const std::string& NewList);
  /// 4 December 2000 when none is stored.
  [[nodiscard]] Date LastGotEBUNumbers();
  void SetLastGotEBUNumbers(Date NewDate);
  /// 4 December 2000 when none is stored.
  [[nodiscard]] Date LastUploadDate();
  void SetLastUploadDate(Date NewDate);
  [[nodiscard]] std::string LatestClubName();
  /// Adds a name to the history and derives the certificate prefix anew: both or, with an error, neither.
  void SetLatestClubName(const std::string& name);
  /// The EBU number that goes with the newest name.
  [[nodiscard]] std::string ClubID();
  [[nodiscard]] bool WasClubEverCalled(const std::string& ClubName);

  // --- Recovery (store/Recovery.cpp) ---------------------------------------------------------------------------------

  /// Rebuilds the club's data from an old or damaged file, named by its full path: the store's file gets the current
  /// layout, each of its tables is emptied and filled with what can be read of the old one. Columns that the old file
  /// lacks get defaults, and so do empty values of these columns. Competitions, awards and club names get new
  /// identifiers; what refers to a competition follows it. Nothing is raised: what could not be saved is shown in one
  /// message box "Database Recovery Error" at the end, and reported. The old file is only read; opening it brings in a
  /// redo log that lies beside it, as any opening does. Calling it again starts each table anew.
  RecoveryReport RecoverData(const std::string& OldDatabaseFile, RecoveryObserver* observer = nullptr);

 private:
  /// The one row of Settings, added when the table is empty.
  [[nodiscard]] std::unique_ptr<ado::Recordset> OpenSettingsRow();

  void OpenConnection();
  /// The connection; raises NoObject on a closed store.
  [[nodiscard]] ado::Connection& OpenFile();

  std::shared_ptr<const Platform> platform_;
  std::vector<FirstOpenStep> firstOpenSteps_;
  std::string folder_;
  std::unique_ptr<ado::Connection> connection_;
  std::string openPath_;  ///< of the connection
  std::int16_t openCount_ = 0;
  std::int16_t transactions_ = 0;
  bool layoutCheckPending_ = true;
  /// The folder was changed while a file was open: the file of the new one has not been checked, whatever was
  /// meanwhile.
  bool nextFileUnchecked_ = false;
  bool fieldLimitMessageShown_ = false;
};

}  // namespace tavi
