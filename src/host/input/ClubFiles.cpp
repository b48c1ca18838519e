#include "host/input/ClubFiles.h"

#include <set>
#include <utility>

#include "host/input/Csv.h"
#include "platform/values/Text.h"

// Members and pairs from comma-separated files. A reader knows its columns by name; a row becomes a line of plain
// values in one way of writing, and nothing is looked up in the club: who is meant, and what changes, is found out by
// the plan (host/imports). The first thing wrong refuses the whole file with its line. A column that is missing and an
// empty cell are kept apart all the way, because an import touches only the columns that its file has.
namespace tavi::host {
namespace {

const std::vector<std::string>& MemberColumns() {
  static const std::vector<std::string> names = {
      "club_number", "ebu_number", "title",     "first",       "initials", "last",    "known_as", "sex",      "email",
      "phone",       "mobile",     "join_date", "member_type", "house",    "address", "town",     "postcode", "active"};
  return names;
}

/// M, F or nothing; words too, as other programs write them.
std::string Sex(const CsvFile& file, const CsvFile::Row& row) {
  const std::string text = UpperCase(file.Field(row, "sex"));
  if (text.empty()) return {};
  if (text == "M" || text == "MALE") return "M";
  if (text == "F" || text == "FEMALE") return "F";
  file.Refuse(row, "sex is \"" + text + "\"; expected M, F or nothing");
}

/// A spreadsheet breaks lines with LF, a club's file holds CR LF; first to one form, so that CR is not doubled.
std::string WithLineBreaks(const std::string& text) {
  return ReplaceAll(ReplaceAll(text, "\r\n", "\n"), "\n", "\r\n");
}

/// A cell in the one way of writing it.
std::string ValueOf(const CsvFile& file, const CsvFile::Row& row, const std::string& column) {
  if (column == "ebu_number") return NationalNumberInCell(file, row, column);
  if (column == "sex") return Sex(file, row);
  if (column == "join_date") return DayInCell(file, row, column);
  const std::string text = file.Field(row, column);
  // As for members who are added in other ways.
  if (column == "member_type" && text.empty()) return "Standard";
  if (column == "address") return WithLineBreaks(text);
  if (column != "active") return text;
  const std::optional<bool> active = YesOrNoInCell(file, row, column);
  return !active ? "" : *active ? "y" : "n";
}

MemberLine MemberIn(const CsvFile& file, const CsvFile::Row& row) {
  MemberLine member;
  member.line = row.line;
  member.number = NumberInCell(file, row, "club_number");
  for (const std::string& column : MemberColumns()) {
    if (column != "club_number" && file.HasColumn(column)) member.values[column] = ValueOf(file, row, column);
  }
  // Without a number there is only the name, and namesakes would be taken for one another.
  if (!member.number && member.Value("ebu_number").value_or("").empty()) {
    file.Refuse(row, "the member has no number; expected club_number, ebu_number or both");
  }
  return member;
}

}  // namespace

std::optional<std::string> MemberLine::Value(const std::string& column) const {
  const auto found = values.find(column);
  return found == values.end() ? std::nullopt : std::optional(found->second);
}

MemberFile ReadMemberFile(const std::string& path, bool passOverUnknown) {
  const CsvFile file = CsvFile::Read(path);
  MemberFile read;
  read.name = path;
  read.passedOver = UnknownColumns(file, MemberColumns(), passOverUnknown);
  if (!file.HasColumn("club_number") && !file.HasColumn("ebu_number")) {
    file.RefuseHeader(
        "the header has neither club_number nor ebu_number; expected one of them, to know the members by");
  }
  // The same number twice means a row that was copied and not changed: which of the two is right, nobody can say here.
  std::set<std::int32_t> numbers;
  std::set<std::string> nationalNumbers;
  for (const CsvFile::Row& row : file.Rows()) {
    MemberLine member = MemberIn(file, row);
    if (member.number && !numbers.insert(*member.number).second) {
      file.Refuse(row,
                  "the club number " + std::to_string(*member.number) + " is given to two members; expected each once");
    }
    const std::string nationalNumber = member.Value("ebu_number").value_or("");
    if (!nationalNumber.empty() && !nationalNumbers.insert(nationalNumber).second) {
      file.Refuse(row, "the EBU number " + nationalNumber + " is given to two members; expected each once");
    }
    read.members.push_back(std::move(member));
  }
  return read;
}

namespace {

/// Known because other programs write it; a club's file has no place for it.
constexpr const char* kSince = "since";

const std::vector<std::string>& PairColumns() {
  static const std::vector<std::string> names = {"club_number_1", "club_number_2", "ebu_number_1",
                                                 "ebu_number_2",  "player_1",      "player_2",
                                                 "known_as",      "active",        kSince};
  return names;
}

/// `place` is "1" or "2", the end of the columns' names.
PairPlayer PlayerOf(const CsvFile& file, const CsvFile::Row& row, const std::string& place) {
  PairPlayer player;
  player.number = NumberInCell(file, row, "club_number_" + place);
  player.nationalNumber = NationalNumberInCell(file, row, "ebu_number_" + place);
  player.name = file.Field(row, "player_" + place);
  if (!player.number && player.nationalNumber.empty()) {
    file.Refuse(row, "player " + place + " of the pair has no number; expected club_number_" + place + ", ebu_number_" +
                         place + " or both");
  }
  return player;
}

}  // namespace

PairFile ReadPairFile(const std::string& path, bool passOverUnknown) {
  const CsvFile file = CsvFile::Read(path);
  PairFile read;
  read.name = path;
  read.passedOver = UnknownColumns(file, PairColumns(), passOverUnknown);
  // Told like unknown columns, but never refused: it would be wrong to say that its values were stored.
  if (file.HasColumn(kSince)) read.passedOver.emplace_back(kSince);
  for (const std::string place : {"1", "2"}) {
    if (file.HasColumn("club_number_" + place) || file.HasColumn("ebu_number_" + place)) continue;
    file.RefuseHeader("the header has neither club_number_" + place + " nor ebu_number_" + place +
                      "; expected one of them, to know the player by");
  }
  for (const CsvFile::Row& row : file.Rows()) {
    PairLine pair;
    pair.line = row.line;
    pair.players = {PlayerOf(file, row, "1"), PlayerOf(file, row, "2")};
    if (file.HasColumn("known_as")) pair.knownAs = file.Field(row, "known_as");
    // A missing column and an empty cell alike leave the pair as it is.
    pair.active = YesOrNoInCell(file, row, "active");
    read.pairs.push_back(std::move(pair));
  }
  return read;
}

}  // namespace tavi::host
