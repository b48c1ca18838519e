#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/Platform.h"
#include "platform/ado/Provider.h"
#include "platform/values/Date.h"
#include "platform/values/Error.h"
#include "store/RecoveryReport.h"

namespace tavi {

/// The details that AddMember stores beside number, names and keys; the defaults are those of an unknown detail.
struct MemberDetails {
  std::string Title;
  std::string FirstName;
  std::string Initials;
  std::string LastName;
  double Handicap = 50.0;
  std::string MemberType;
  Date JoinDate;
  Date LastPaid;
  Date NextDue;
  double Subs = 0.0;
  std::int32_t RequiredID = -1;  ///< -1: the next free number
  std::int32_t Gender = 0;
  std::string HouseID;
  std::string Address;
  std::string PostCode;
  std::string email;
  std::string HomePhone;
  std::string WorkPhone;
  std::string MobilePhone;
  std::string Notes;
  bool Privacy = false;
};

/// The store: owns the connection to the membership database file "ClubMembers.mdb" of one folder, through which
/// everything else reads and writes. One belongs to each thread; it is used on that thread only. The file is opened by
/// the first operation that needs it and closed by the last one that counted it open. Each group of operations is
/// defined in the room that it belongs to.
///
/// Errors: those that the store raises itself have the number 0x80040000 and the source "cDatabase"; errors of the
/// provider pass on unchanged, after the open count has been balanced where an operation's comment says so.
class cDatabase {
 public:
  /// Writes the diagnostics line "TaviMembership Initialising". The folder is empty, the layout check pending.
  explicit cDatabase(std::shared_ptr<const Platform> platform);
  /// Closes the file whatever the open count; swallows errors.
  ~cDatabase();
  cDatabase(const cDatabase&) = delete;
  cDatabase& operator=(const cDatabase&) = delete;

  [[nodiscard]] const Platform& GetPlatform() const { return *platform_; }
  [[nodiscard]] std::shared_ptr<const Platform> SharedPlatform() const { return platform_; }

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
  /// Opens the file or counts one more use. The first open after the folder was set checks the layout and refreshes
  /// the uniqueness flags and the stored name keys. Raises "Attempt to use database before path set." and "Failed to
  /// open membership database
  /// ..."; after an error the count is as before. The count has 16 bits: at 32767 the file stays open and the count
  /// stands still.
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
  /// Brings keys of the open file that another function made up to date (store/StoredNameKeys.h). What cannot be
  /// written stays: only the search by similar names suffers. The diagnostics log says so then.
  void RefreshStoredNameKeys() noexcept;
  /// The tables, columns or indexes of the open file.
  [[nodiscard]] std::unique_ptr<ado::Recordset> OpenSchema(ado::SchemaKind kind);

  // --- Transactions (store/Connection.cpp; store/Transaction.h has the guard that operations use) --------------------

  /// Begins a transaction on the open file, within another one when there is one, and returns how many are open then.
  /// Raises NoObject on a closed store; so do the next two.
  std::int32_t BeginTransaction();
  /// Ends the innermost transaction and keeps its changes; those of the outermost are stored, all or none. After an
  /// error it is still open, to be rolled back.
  void CommitTransaction();
  /// Ends the innermost transaction and undoes its changes.
  void RollbackTransaction();
  /// How many transactions are open; 0 on a closed store.
  [[nodiscard]] std::int32_t TransactionLevel() const;

  // --- SQL literals (store/Literals.cpp) -----------------------------------------------------------------------------

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

  // --- Field readers (store/FieldReaders.cpp): null gives the default; a failure the zero value of the type, no error
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

  // --- Recovery (store/Recovery.cpp) ---------------------------------------------------------------------------------

  /// Rebuilds the club's data from an old or damaged file, named by its full path: the store's file gets the current
  /// layout, each of its tables is emptied and filled with what can be read of the old one. Columns that the old file
  /// lacks get defaults, and so do empty values of these columns. Competitions, awards and club names get new
  /// identifiers; what refers to a competition follows it. Nothing is raised: what could not be saved is shown in one
  /// message box "Database Recovery Error" at the end, and reported. The old file is only read; opening it brings in a
  /// redo log that lies beside it, as any opening does. Calling it again starts each table anew.
  RecoveryReport RecoverData(const std::string& OldDatabaseFile, RecoveryObserver* observer = nullptr);

  // --- Members (members/MemberRecords.cpp) ---------------------------------------------------------------------------

  [[nodiscard]] std::int32_t NextAvailableMemberNo();
  /// Inserts a member with fresh keys, stores the handicap and refreshes the uniqueness flags of that first name: all
  /// of it or, with an error, nothing. Returns the number.
  std::int32_t AddMember(const MemberDetails& details);
  [[nodiscard]] bool MemberExists(std::int32_t memberNumber);
  /// False when no row was found.
  bool GetMembersNames(std::int32_t memberNumber, std::string& FirstName, std::string& Initials, std::string& LastName,
                       bool& Active);
  /// First name, initials and last name joined with blanks, each pair of blanks made one; empty when unknown.
  [[nodiscard]] std::string GetFullName(std::int32_t memberNumber);
  /// The number of the member of exactly this name, or -1. `Retired` is set when a row was found.
  std::int32_t GetMembershipID(const std::string& FirstName, const std::string& Initials, const std::string& LastName,
                               bool& Retired);
  /// Retired members' too; 50.0 without a row.
  [[nodiscard]] double GetHandicap(std::int32_t memberNumber);
  [[nodiscard]] std::int16_t GetPlayerStratum(std::int32_t memberNumber);
  void SetPlayerStratum(std::int32_t memberNumber, std::int16_t NewStratum);

  // --- Partnerships (members/PartnershipRecords.cpp) -----------------------------------------------------------------

  /// "LowerPlayer = 3 And HigherPlayer = 7".
  [[nodiscard]] static std::string PairWhereClause(std::int32_t P1, std::int32_t P2);
  /// True when the pair has a row; then the three results are set.
  bool IsRegularPartnership(std::int32_t P1, std::int32_t P2, std::string& PairName, double& Handicap, bool& Inactive);
  /// Adds or reactivates a pair; a handicap below 0 becomes the mean of the players' ones. Raises "You cannot partner a
  /// player with themself." and, when asked to, "Partnership already exists".
  void MakeRegularPartnership(std::int32_t P1, std::int32_t P2, double Handicap, bool ErrorIfAlreadyExists,
                              const std::string& KnownAs);

  // --- Name uniqueness (names/NameUniqueness.cpp) --------------------------------------------------------------------

  /// Writes the UniquenessFlag of every active member, or of those of one first name.
  void SetNameUniquenessFlags(const std::string& FirstName);

 private:
  // --- File layout (store/Layout.cpp) --------------------------------------------------------------------------------

  void CheckLayout();
  /// The one row of Settings, added when the table is empty.
  [[nodiscard]] std::unique_ptr<ado::Recordset> OpenSettingsRow();

  void OpenConnection();
  /// The connection; raises NoObject on a closed store.
  [[nodiscard]] ado::Connection& OpenFile();

  std::shared_ptr<const Platform> platform_;
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
