// The table Settings, which has one row, and ClubNames, the history of the club's names. Each function opens the file
// for itself, so that it can be called alone; several in a row share the opening when the caller holds the file open.
// Counters (certificates, uploads) are counted on in the file before the number is used, so that a number is never
// given twice, at worst not at all.
#include <limits>

#include "platform/values/Convert.h"
#include "platform/values/Text.h"
#include "store/Transaction.h"
#include "store/Values.h"
#include "store/cDatabase.h"
#include "util/TextHelpers.h"

namespace tavi {
namespace {

constexpr const char* kPrefixColumn = "MPCertificatePrefix";
constexpr const char* kCertificateColumn = "LastMPCertificate";
constexpr const char* kUploadColumn = "LastMPUploadNo";
constexpr const char* kMethodColumn = "MasterPointMethod";
constexpr const char* kCountyColumn = "CountyList";
constexpr const char* kEbuListColumn = "LastGotEBUNos";
constexpr const char* kUploadDateColumn = "LastUploadDate";
/// "SABC00042". Greater numbers have more digits.
constexpr std::size_t kCertificateDigits = 5;
/// As many as the column takes.
constexpr std::size_t kLongestPrefix = 4;
/// 4 December 2000: the answer of both dates while none is stored.
constexpr Date kNoDateYet{36864.0};

/// Only this column is written: what others have stored in the rest of the row since it was read stays.
void Store(ado::Recordset& settings, const char* column, const Value& value) {
  settings.Set(column, value);
  settings.Update();
}

/// Adds 1 to a counter column and returns the new number.
std::int32_t CountOn(ado::Recordset& settings, const char* column) {
  const std::int32_t last = cDatabase::GetNumericField(settings, column);
  if (last == std::numeric_limits<std::int32_t>::max()) {
    throw Error(ErrorNumber::Overflow, kStoreSource,
                "Overflow: " + std::string(column) + " in the table Settings has reached its end; set it back.");
  }
  Store(settings, column, last + 1);
  return last + 1;
}

bool IsWhiteSpace(char character) {
  return character == ' ' || character == '\t' || character == '\r' || character == '\n';
}

}  // namespace

// As a table and not by a statement: it has one row, and the cursor can change it.
std::unique_ptr<ado::Recordset> cDatabase::OpenSettingsRow() {
  auto settings = OpenRecordset("Settings", ado::CursorType::Dynamic, true);
  if (!settings->AtEnd()) return settings;
  // A new file has no row yet.
  settings->AddNew();
  settings->Set(kMethodColumn, std::int16_t{0});
  settings->Set(kCertificateColumn, std::int32_t{0});
  settings->Set(kUploadColumn, std::int32_t{0});
  settings->Set(kPrefixColumn, std::string());
  settings->Set(kCountyColumn, std::string());
  settings->Update();
  return settings;
}

std::string cDatabase::MPCertificatePrefix() {
  return WhileOpen(*this, [&] {
    const auto settings = OpenSettingsRow();
    std::string prefix = GetTextField(*settings, kPrefixColumn);
    // Derived once; from then on only a new name of the club changes it.
    if (prefix.empty()) {
      prefix = DefaultMPPrefix("MP");
      Store(*settings, kPrefixColumn, prefix);
    }
    return prefix;
  });
}

std::string cDatabase::FullCertificateNumber(std::int32_t NumericPart) {
  return MPCertificatePrefix() + PaddedNumber(NumericPart, kCertificateDigits);
}

std::string cDatabase::NextMPCertificateNumber() {
  return WhileOpen(*this, [&] {
    const std::int32_t number = CountOn(*OpenSettingsRow(), kCertificateColumn);
    return FullCertificateNumber(number);
  });
}

std::int32_t cDatabase::GetLastMPCertificateNo() {
  return WhileOpen(*this, [&] { return GetNumericField(*OpenSettingsRow(), kCertificateColumn); });
}

// Counting goes on behind the given number.
void cDatabase::ResetLastMPCertificateNo(std::int32_t LastCertNo) {
  WhileOpen(*this, [&] { Store(*OpenSettingsRow(), kCertificateColumn, LastCertNo); });
}

std::int32_t cDatabase::NextMPUploadNumber() {
  return WhileOpen(*this, [&] { return CountOn(*OpenSettingsRow(), kUploadColumn); });
}

// "St. Anne's Bridge Club" gives "SABC": of each word the first plain letter, whatever stands before it.
std::string cDatabase::DefaultMPPrefix(const std::string& DefaultIfNone) {
  std::string prefix;
  bool isWordStart = true;
  for (const char character : UpperCase(Trim(LatestClubName()))) {
    if (IsWhiteSpace(character)) isWordStart = true;
    if (!isWordStart || character < 'A' || character > 'Z') continue;
    prefix.push_back(character);
    isWordStart = false;
    if (prefix.size() == kLongestPrefix) break;
  }
  return prefix.empty() ? DefaultIfNone : prefix;
}

// Read by a statement, which does not add the row: asking for it must not change the file. Without a row the reader
// gives 0.
std::int16_t cDatabase::MasterPointIssueMethod() {
  return WhileOpen(*this, [&] {
    const auto rows = OpenRecordset("Select MasterPointMethod from Settings");
    return ToInt16(GetNumericField(*rows, kMethodColumn));
  });
}

void cDatabase::SetMasterPointIssueMethod(std::int16_t NewMethod) {
  WhileOpen(*this, [&] { Store(*OpenSettingsRow(), kMethodColumn, NewMethod); });
}

std::string cDatabase::CountyList() {
  return WhileOpen(*this, [&] { return GetTextField(*OpenSettingsRow(), kCountyColumn); });
}

void cDatabase::SetCountyList(const std::string& NewList) {
  WhileOpen(*this, [&] { Store(*OpenSettingsRow(), kCountyColumn, NewList); });
}

Date cDatabase::LastGotEBUNumbers() {
  return WhileOpen(*this, [&] { return GetDateField(*OpenSettingsRow(), kEbuListColumn, kNoDateYet); });
}

void cDatabase::SetLastGotEBUNumbers(Date NewDate) {
  WhileOpen(*this,
            [&] { Store(*OpenSettingsRow(), kEbuListColumn, RequireDate(NewDate, "the date of the last list")); });
}

Date cDatabase::LastUploadDate() {
  return WhileOpen(*this, [&] { return GetDateField(*OpenSettingsRow(), kUploadDateColumn, kNoDateYet); });
}

void cDatabase::SetLastUploadDate(Date NewDate) {
  WhileOpen(*this,
            [&] { Store(*OpenSettingsRow(), kUploadDateColumn, RequireDate(NewDate, "the date of the last upload")); });
}

// The history is only added to: the highest identifier is the club of today.
std::string cDatabase::LatestClubName() {
  return WhileOpen(*this, [&] {
    return GetTextField(*OpenRecordset("Select top 1 ClubName from ClubNames Order by ClubID Desc"), "ClubName");
  });
}

void cDatabase::SetLatestClubName(const std::string& name) {
  // A name whose prefix was not stored would print certificates under the old one.
  InTransaction(*this, [&] {
    Execute("Insert into ClubNames (ClubName) Values (" + SQLString(name) + ")");
    const std::string prefix = DefaultMPPrefix("");
    // A name without plain letters leaves the prefix of the name before.
    if (!prefix.empty()) Store(*OpenSettingsRow(), kPrefixColumn, prefix);
  });
}

// Empty for a club without a name, too.
std::string cDatabase::ClubID() {
  return WhileOpen(*this, [&] {
    const auto row = OpenRecordset("Select top 1 ClubEBUNumber from ClubNames Order by ClubID Desc");
    return row->AtEnd() ? std::string() : GetTextField(*row, "ClubEBUNumber");
  });
}

bool cDatabase::WasClubEverCalled(const std::string& ClubName) {
  return WhileOpen(*this, [&] {
    return !OpenRecordset("Select top 1 ClubID from ClubNames Where ClubName = " + SQLString(ClubName))->AtEnd();
  });
}

}  // namespace tavi
