#include "host/input/Csv.h"

#include <algorithm>
#include <map>

#include "host/results/Xml.h"
#include "host/text/NearestName.h"
#include "platform/values/Date.h"
#include "platform/values/Error.h"
#include "platform/values/Text.h"
#include "util/TextHelpers.h"

// Comma-separated files as the spreadsheets of all countries write them. The separator is found out from the first
// line: where the comma is the decimal mark, spreadsheets put semicolons between fields. A row is what stands between
// line ends outside of quotes, so that a quoted address of four lines is one field and the row's number is that of its
// first line.
//
//   club_number;last;address             three names, the separator is ;
//   7;"O""Neil";"1 High Street           a doubled quote is one; the field goes on ...
//   Acol"                                ... and ends here
//
// All rows have as many fields as the header; one with more or fewer has an unquoted comma in it most likely, and what
// follows would be stored in the wrong columns.
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

/// The comma wins where several are there. A header of a single name has none of them, and any will do.
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
    // The line that names the separator is no row.
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
  /// A field up to its separator or line end, blanks around it taken away. A quote counts only at its very beginning:
  /// elsewhere it is a character like others, as in 6'2".
  std::string NextField() {
    if (!AtEnd() && text_[at_] == '"') return QuotedField();
    const std::size_t end = std::min(text_.find_first_of(std::string("\r\n") + separator_, at_), text_.size());
    std::string field = Trim(text_.substr(at_, end - at_));
    at_ = end;
    return field;
  }

  /// A field that begins with a quote, up to the quote that is not doubled.
  std::string QuotedField() {
    const std::size_t firstLine = line_;
    std::string field;
    for (++at_; !AtEnd(); ++at_) {
      if (text_[at_] == '"') {
        if (at_ + 1 >= text_.size() || text_[at_ + 1] != '"') break;
        ++at_;
      }
      // For the messages of later rows: the breaks inside count as lines of the file.
      if (text_[at_] == '\n') ++line_;
      field.push_back(text_[at_]);
    }
    if (AtEnd()) RefuseLine(fileName_, firstLine, "a quoted field is not closed; expected a closing quote");
    ++at_;
    // "a"b is a quote that was forgotten to be doubled; guessing where the field ends would shift the columns.
    const bool ends = AtEnd() || text_[at_] == separator_ || text_[at_] == '\r' || text_[at_] == '\n';
    if (!ends) RefuseLine(fileName_, line_, "text follows a quoted field; expected a separator or the end of the line");
    return Trim(field);
  }

  /// CR LF, LF or CR alone.
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
  // The same rules as for result files; the declaration is one that such a file does not have.
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
  headerLine_ = header.line;
  for (std::size_t i = 0; i < header.fields.size(); ++i) {
    // Names without regard to case. Columns without a name may repeat: they are asked for by nobody.
    if (!header.fields[i].empty() && !columns_.emplace(LowerCase(header.fields[i]), i).second) {
      Refuse(header, "the column " + header.fields[i] + " stands twice in the header; expected each name once");
    }
  }
}

std::string CsvFile::Field(const Row& row, const std::string& column) const {
  const auto found = columns_.find(column);
  return found == columns_.end() ? std::string() : row.fields[found->second];
}

// Spreadsheets leave empty columns at the right end, as wide as somebody once went.
std::vector<std::string> CsvFile::ColumnNames() const {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < header_.size(); ++i) {
    // One without a name that holds something is listed, and then unknown: somebody has entered it for a purpose.
    const bool isEmpty = std::ranges::all_of(rows_, [i](const Row& row) { return row.fields[i].empty(); });
    if (!header_[i].empty() || !isEmpty) names.push_back(header_[i]);
  }
  return names;
}

void CsvFile::RefuseHeader(const std::string& reason) const {
  RefuseLine(fileName_, headerLine_, reason);
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
  // A pairs file knows no "last", so that it must not be suggested there.
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
  // All of them in one message, so that a file is mended in one go.
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

// A text of figures, for nothing is counted with it.
std::string NationalNumberInCell(const CsvFile& file, const CsvFile::Row& row, const std::string& column) {
  const std::string text = file.Field(row, column);
  if (text.empty()) return {};
  if (!IsFigures(text)) file.Refuse(row, column + " is \"" + text + "\"; expected figures only");
  return WithoutLeadingZeros(text);
}

std::optional<bool> YesOrNoInCell(const CsvFile& file, const CsvFile::Row& row, const std::string& column) {
  const std::string text = LowerCase(file.Field(row, column));
  if (text.empty()) return std::nullopt;
  // -1 is how the database itself writes true.
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
  // A time behind the day is dropped: other programs export one with every date.
  if (const std::optional<Date> date = Date::FromIso(text)) return date->DayOnly().Iso();
  const std::vector<std::string> parts = Split(text, '/');
  // Day first and a year of four figures: 5/3/01 might be any of three dates.
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
