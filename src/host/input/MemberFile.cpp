#include "host/input/MemberFile.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

#include "host/input/Csv.h"
#include "host/text/Figures.h"
#include "platform/values/Convert.h"
#include "platform/values/Error.h"
#include "platform/values/Text.h"

namespace tavi::host {
namespace {

constexpr std::int32_t kMale = 1;
constexpr std::int32_t kFemale = 2;

std::int32_t RequiredNumber(const CsvFile& file, const CsvFile::Row& row, const std::string& column) {
  const std::string text = file.Field(row, column);
  if (!IsFigures(text) || text.size() > kLongestWholeNumber || std::stoi(text) == 0) {
    file.Refuse(row, column + " is \"" + text + "\"; expected a whole number above 0");
  }
  return std::stoi(text);
}

std::string NationalNumber(const CsvFile& file, const CsvFile::Row& row) {
  const std::string text = file.Field(row, "ebu_number");
  if (text.empty()) return {};
  if (!IsFigures(text)) file.Refuse(row, "ebu_number is \"" + text + "\"; expected figures only");
  return WithoutLeadingZeros(text);
}

/// y or n (yes, no, true, false, 1, 0 too); an empty field is yes.
bool YesOrNo(const CsvFile& file, const CsvFile::Row& row, const std::string& column) {
  const std::string text = LowerCase(file.Field(row, column));
  for (const char* yes : {"", "y", "yes", "true", "1", "-1"}) {
    if (text == yes) return true;
  }
  for (const char* no : {"n", "no", "false", "0"}) {
    if (text == no) return false;
  }
  file.Refuse(row, column + " is \"" + text + "\"; expected y or n");
}

std::int32_t Sex(const CsvFile& file, const CsvFile::Row& row) {
  const std::string text = UpperCase(file.Field(row, "sex"));
  if (text.empty()) return 0;
  if (text == "M" || text == "MALE") return kMale;
  if (text == "F" || text == "FEMALE") return kFemale;
  file.Refuse(row, "sex is \"" + text + "\"; expected M, F or nothing");
}

Date OptionalDate(const CsvFile& file, const CsvFile::Row& row, const std::string& column) {
  const std::string text = file.Field(row, column);
  if (text.empty()) return {};
  if (const std::optional<Date> date = Date::FromIso(text)) return date->DayOnly();
  const std::vector<std::string> parts = Split(text, '/');
  const bool figures =
      parts.size() == 3 && parts[2].size() == 4 &&
      std::all_of(parts.begin(), parts.end(), [](const auto& part) { return IsFigures(part) && part.size() <= 4; });
  if (figures) {
    try {
      return Date::FromCivil(std::stoi(parts[2]), std::stoi(parts[1]), std::stoi(parts[0]));
    } catch (const Error&) {
      file.Refuse(row, column + " is \"" + text + "\", which is no day of the calendar");
    }
  }
  file.Refuse(row, column + " is \"" + text + "\"; expected yyyy-mm-dd or dd/mm/yyyy");
}

ImportedMember MemberOf(const CsvFile& file, const CsvFile::Row& row) {
  const auto field = [&](const char* column) { return file.Field(row, column); };
  ImportedMember member;
  member.line = row.line;
  member.number = RequiredNumber(file, row, "club_number");
  member.nationalNumber = NationalNumber(file, row);
  member.title = field("title");
  member.firstName = field("first");
  member.initials = field("initials");
  member.lastName = field("last");
  member.knownAs = field("known_as");
  member.sex = Sex(file, row);
  member.email = field("email");
  member.homePhone = field("phone");
  member.mobilePhone = field("mobile");
  member.joined = OptionalDate(file, row, "join_date");
  member.memberType = field("member_type").empty() ? "Standard" : field("member_type");
  member.house = field("house");
  member.address = field("address");
  if (!field("town").empty()) member.address += (member.address.empty() ? "" : "\r\n") + field("town");
  member.postCode = field("postcode");
  member.active = YesOrNo(file, row, "active");
  if (member.firstName.empty() && member.lastName.empty()) {
    file.Refuse(row, "the member has no name; expected a first name or a surname");
  }
  return member;
}

}  // namespace

std::vector<ImportedMember> ReadMemberFile(const std::string& path) {
  const CsvFile file = CsvFile::Read(path);
  for (const char* column : {"club_number", "first", "last"}) file.RequireColumn(column);
  std::vector<ImportedMember> members;
  std::set<std::int32_t> numbers;
  std::set<std::string> nationalNumbers;
  for (const CsvFile::Row& row : file.Rows()) {
    ImportedMember member = MemberOf(file, row);
    if (!numbers.insert(member.number).second) {
      file.Refuse(row,
                  "the club number " + std::to_string(member.number) + " is given to two members; expected each once");
    }
    if (!member.nationalNumber.empty() && !nationalNumbers.insert(member.nationalNumber).second) {
      file.Refuse(row, "the EBU number " + member.nationalNumber + " is given to two members; expected each once");
    }
    members.push_back(std::move(member));
  }
  return members;
}

std::vector<ImportedPair> ReadPairFile(const std::string& path) {
  const CsvFile file = CsvFile::Read(path);
  for (const char* column : {"club_number_1", "club_number_2"}) file.RequireColumn(column);
  std::vector<ImportedPair> pairs;
  std::set<std::pair<std::int32_t, std::int32_t>> seen;
  for (const CsvFile::Row& row : file.Rows()) {
    ImportedPair pair;
    pair.line = row.line;
    pair.firstNumber = RequiredNumber(file, row, "club_number_1");
    pair.secondNumber = RequiredNumber(file, row, "club_number_2");
    pair.knownAs = file.Field(row, "known_as");
    pair.active = YesOrNo(file, row, "active");
    if (pair.firstNumber == pair.secondNumber) {
      file.Refuse(row, "member " + std::to_string(pair.firstNumber) + " is paired with themself; expected two members");
    }
    if (!seen.insert(std::minmax(pair.firstNumber, pair.secondNumber)).second) {
      file.Refuse(row, "the pair stands twice in the file; expected it once");
    }
    pairs.push_back(std::move(pair));
  }
  return pairs;
}

}  // namespace tavi::host
