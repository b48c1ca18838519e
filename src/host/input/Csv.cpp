#include "host/input/Csv.h"

#include <algorithm>
#include <map>

#include "host/results/Xml.h"
#include "host/text/Figures.h"
#include "host/text/NearestName.h"
#include "platform/values/Date.h"
#include "platform/values/Error.h"
#include "platform/values/Text.h"

namespace tavi::host {
namespace {

[[noreturn]] void RefuseLine(const std::string& fileName, std::size_t line, const std::string& reason) {
  throw Error(ErrorNumber::InvalidArgument, "tavi", fileName + ":" + std::to_string(line) + ": " + reason);
}

/// The separator that a first line "sep=;" names, which some spreadsheets write and understand.
std::optional<char> NamedSeparator(std::string_view line) {
  constexpr std::string_view kStart = "sep=";
  const bool isNamed = line.size() == kStart.size() + 1 && EqualIgnoringCase(line.substr(0, kStart.size()), kStart);
  return isNamed ? std::optional(line.back()) : std::nullopt;
}

char SeparatorOf(std::string_view text) {
  const std::string_view header = text.substr(0, text.find_first_of("\r\n"));
  if (const auto named = NamedSeparator(header)) return *named;
  if (header.find(',') != std::string_view::npos) return ',';
  if (header.find(';') != std::string_view::npos) return ';';
  return header.find('\t') != std::string_view::npos ? '\t' : ',';
}

/// A spreadsheet leaves rows that were emptied.
bool HasNoContents(const CsvFile::Row& row) {
  return std::ranges::all_of(row.fields, [](const std::string& field) { return field.empty(); });
}

/// Takes a text apart, one row after the other.
class Scanner {
 public:
  Scanner(std::string_view text, const std::string& fileName)
      : text_(text), fileName_(fileName), separator_(SeparatorOf(text)) {
    const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
    if (!NamedSeparator(text.substr(0, end))) return;
    at_ = end;
    SkipLineEnd();
  }

  [[nodiscard]] bool AtEnd() const { return at_ >= text_.size(); }

  CsvFile::Row NextRow() {
    CsvFile::Row row;
    row.line = line_;
    row.fields.push_back(NextField());
    while (!AtEnd() && text_[at_] == separator_) {
      ++at_;
      row.fields.push_back(NextField());
    }
    SkipLineEnd();
    return row;
  }

 private:
  std::string NextField() {
    if (!AtEnd() && text_[at_] == '"') return QuotedField();
    const std::size_t end = std::min(text_.find_first_of(std::string("\r\n") + separator_, at_), text_.size());
    std::string field = Trim(text_.substr(at_, end - at_));
    at_ = end;
    return field;
  }

  std::string QuotedField() {
    const std::size_t firstLine = line_;
    std::string field;
    for (++at_; !AtEnd(); ++at_) {
      if (text_[at_] == '"') {
        if (at_ + 1 >= text_.size() || text_[at_ + 1] != '"') break;
        ++at_;
      }
      if (text_[at_] == '\n') ++line_;
      field.push_back(text_[at_]);
    }
    if (AtEnd()) RefuseLine(fileName_, firstLine, "a quoted field is not closed; expected a closing quote");
    ++at_;
    const bool ends = AtEnd() || text_[at_] == separator_ || text_[at_] == '\r' || text_[at_] == '\n';
    if (!ends) RefuseLine(fileName_, line_, "text follows a quoted field; expected a separator or the end of the line");
    return Trim(field);
  }

  void SkipLineEnd() {
    if (!AtEnd() && text_[at_] == '\r') ++at_;
    if (!AtEnd() && text_[at_] == '\n') ++at_;
    ++line_;
  }

  std::string_view text_;
  const std::string& fileName_;
  char separator_;
  std::size_t at_ = 0;
  std::size_t line_ = 1;
};

}  // namespace

CsvFile CsvFile::Read(const std::string& path) {
  return Parse(ReadWholeFile(path), path);
}

CsvFile CsvFile::Parse(std::string_view bytes, const std::string& fileName) {
  const std::string text = DecodeXml(bytes, fileName);
  if (text.find('\0') != std::string::npos)
    RefuseLine(fileName, 1, "the file holds NUL characters; expected a text file");
  CsvFile file(fileName);
  Scanner scanner(text, fileName);
  if (scanner.AtEnd())
    RefuseLine(fileName, 1, "the file is empty; expected a header line with the names of the columns");
  file.SetHeader(scanner.NextRow());
  while (!scanner.AtEnd()) {
    Row row = scanner.NextRow();
    if (HasNoContents(row)) continue;
    if (row.fields.size() != file.header_.size()) {
      file.Refuse(row, "the line has " + std::to_string(row.fields.size()) + " fields; expected " +
                           std::to_string(file.header_.size()) + " as in the header");
    }
    file.rows_.push_back(std::move(row));
  }
  return file;
}

void CsvFile::SetHeader(const Row& header) {
  header_ = header.fields;
  for (std::size_t i = 0; i < header.fields.size(); ++i) {
    if (!header.fields[i].empty() && !columns_.emplace(LowerCase(header.fields[i]), i).second) {
      Refuse(header, "the column " + header.fields[i] + " stands twice in the header; expected each name once");
    }
  }
}

std::string CsvFile::Field(const Row& row, const std::string& column) const {
  const auto found = columns_.find(column);
  return found == columns_.end() ? std::string() : row.fields[found->second];
}

std::vector<std::string> CsvFile::ColumnNames() const {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < header_.size(); ++i) {
    const bool isEmpty = std::ranges::all_of(rows_, [i](const Row& row) { return row.fields[i].empty(); });
    if (!header_[i].empty() || !isEmpty) names.push_back(header_[i]);
  }
  return names;
}

void CsvFile::RefuseHeader(const std::string& reason) const {
  RefuseLine(fileName_, 1, reason);
}

void CsvFile::Refuse(const Row& row, const std::string& reason) const {
  RefuseLine(fileName_, row.line, reason);
}

namespace {

/// What other programs call a column that we know by a name that looks different.
std::string SuggestedName(const std::string& name, const std::vector<std::string>& known) {
  static const std::map<std::string, std::string> kOthersNames = {
      {"surname", "last"},    {"family name", "last"}, {"forename", "first"}, {"given name", "first"},
      {"telephone", "phone"}, {"gender", "sex"},       {"city", "town"},      {"zip", "postcode"},
      {"status", "active"},   {"nickname", "known_as"}};
  const auto found = kOthersNames.find(ReplaceAll(LowerCase(name), "_", " "));
  const bool isKnown = found != kOthersNames.end() && std::ranges::count(known, found->second) > 0;
  return isKnown ? found->second : NearestName(name, known);
}

}  // namespace

std::vector<std::string> UnknownColumns(const CsvFile& file, const std::vector<std::string>& known, bool passOver) {
  std::vector<std::string> unknown;
  std::string reason;
  for (const std::string& name : file.ColumnNames()) {
    if (std::ranges::count(known, LowerCase(name)) > 0) continue;
    unknown.push_back(name);
    const std::string nearest = SuggestedName(name, known);
    reason += (reason.empty() ? "" : "; ") + std::string("the column \"") + name + "\" is not known" +
              (nearest.empty() ? "" : ", did you mean " + nearest + "?");
  }
  if (unknown.empty() || passOver) return unknown;
  std::string all;
  for (const std::string& name : known) all += (all.empty() ? "" : ", ") + name;
  file.RefuseHeader(reason + "; known are " + all + "; --ignore-unknown passes over all others");
}

std::optional<std::int32_t> NumberInCell(const CsvFile& file, const CsvFile::Row& row, const std::string& column) {
  const std::string text = file.Field(row, column);
  if (text.empty()) return std::nullopt;
  if (!IsFigures(text) || text.size() > kLongestWholeNumber || std::stoi(text) == 0) {
    file.Refuse(row, column + " is \"" + text + "\"; expected a whole number above 0");
  }
  return std::stoi(text);
}

std::string NationalNumberInCell(const CsvFile& file, const CsvFile::Row& row, const std::string& column) {
  const std::string text = file.Field(row, column);
  if (text.empty()) return {};
  if (!IsFigures(text)) file.Refuse(row, column + " is \"" + text + "\"; expected figures only");
  return WithoutLeadingZeros(text);
}

std::optional<bool> YesOrNoInCell(const CsvFile& file, const CsvFile::Row& row, const std::string& column) {
  const std::string text = LowerCase(file.Field(row, column));
  if (text.empty()) return std::nullopt;
  for (const char* yes : {"y", "yes", "true", "1", "-1"}) {
    if (text == yes) return true;
  }
  for (const char* no : {"n", "no", "false", "0"}) {
    if (text == no) return false;
  }
  file.Refuse(row, column + " is \"" + text + "\"; expected y or n");
}

std::string DayInCell(const CsvFile& file, const CsvFile::Row& row, const std::string& column) {
  const std::string text = file.Field(row, column);
  if (text.empty()) return {};
  if (const std::optional<Date> date = Date::FromIso(text)) return date->DayOnly().Iso();
  const std::vector<std::string> parts = Split(text, '/');
  const bool figures = parts.size() == 3 && parts[2].size() == 4 &&
                       std::ranges::all_of(parts, [](const auto& part) { return IsFigures(part) && part.size() <= 4; });
  if (figures) {
    try {
      return Date::FromCivil(std::stoi(parts[2]), std::stoi(parts[1]), std::stoi(parts[0])).Iso();
    } catch (const Error&) {
      file.Refuse(row, column + " is \"" + text + "\", which is no day of the calendar");
    }
  }
  file.Refuse(row, column + " is \"" + text + "\"; expected yyyy-mm-dd or dd/mm/yyyy");
}

}  // namespace tavi::host
