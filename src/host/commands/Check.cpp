#include "host/commands/Commands.h"

#include <algorithm>
#include <ostream>

#include "access/catalog/Check.h"
#include "host/commands/CheckProgressBar.h"
#include "host/commands/ClubCheck.h"
#include "host/commands/OpenFile.h"
#include "host/json/Json.h"
#include "platform/values/Error.h"
#include "util/Paths.h"

// `tavi check`: first the file as such, whoever's it is; where that is sound, and the file is a club's, also what
// searches and handicaps would pass over. The file is opened for reading only, and its exit codes tell damage (1) from
// a file that could not be looked at (2), because the two call for different help.
namespace tavi::host {
namespace {

/// As it stands in JSON; programs compare it.
const char* NameOf(access::CheckPart part) {
  switch (part) {
    case access::CheckPart::File:
      return "file";
    case access::CheckPart::Rows:
      return "rows";
    case access::CheckPart::Index:
      return "index";
    case access::CheckPart::Counter:
      return "counter";
    case access::CheckPart::Relationship:
      return "relationship";
  }
  return "file";
}

/// With a bar for a large file, which is gone when the result is written.
access::CheckResult RunCheck(const Context& context, access::Database& database, bool strict) {
  CheckProgressBar bar(context);
  return access::CheckFile(database, strict ? access::CheckKind::Strict : access::CheckKind::Ordinary, bar.Progress());
}

/// What the owner of the file can do, by what is wrong: the mildest advice that covers all findings. Rows that refer to
/// missing ones are a matter of contents; indexes and counters are made anew by compacting; of anything else a copy is
/// to be kept, as each further change may cost more.
std::string Advice(const access::CheckResult& result) {
  if (result.findings.empty()) return "";
  const auto count = [&](access::CheckPart part) {
    return std::ranges::count(result.findings, part, &access::CheckFinding::part);
  };
  if (static_cast<std::size_t>(count(access::CheckPart::Relationship)) == result.findings.size())
    return "Every table is whole, but rows refer to others that are missing. Add the missing rows, or delete or change "
           "those that refer to them, with 'tavi sql'.";
  // Compacting reads the rows, so it only helps where these are whole.
  const bool rowsAreWhole = count(access::CheckPart::File) == 0 && count(access::CheckPart::Rows) == 0;
  if (rowsAreWhole)
    return "The rows are whole; only indexes or counters are wrong. Keep a copy of the file and run 'tavi compact' on "
           "it, "
           "which makes them anew.";
  return "Do not go on writing into the file. Keep a copy of it as it is and restore it from a backup; where there is "
         "none, "
         "'tavi recover' saves what can be read of a club's file.";
}

/// Not counted where the file is damaged: reading it has its own findings then.
NameKeyCount CountKeys(const Context& context, access::Database& database, const access::CheckResult& result) {
  return result.findings.empty() ? CountNameKeys(database, *context.platform->nameKeyService) : NameKeyCount();
}

/// Findings and remarks have the same members.
Json JsonOf(const std::vector<access::CheckFinding>& findings) {
  Json list = Json::Array();
  for (const access::CheckFinding& finding : findings)
    list.Add({{"part", NameOf(finding.part)}, {"table", finding.table}, {"text", finding.text}});
  return list;
}

/// Not looked for where the file is damaged, for the same reason.
MissingNumbers FindMissing(access::Database& database, const access::CheckResult& result) {
  return result.findings.empty() ? FindMissingNumbers(database) : MissingNumbers();
}

/// What a sound club's file has that searches and handicaps pass over.
void WriteRemarks(const Context& context, const NameKeyCount& keys, const MissingNumbers& missing) {
  if (keys.stale > 0) {
    context.out << "The stored name keys of " << keys.stale << " of " << keys.members
                << " members are not the ones that this version makes, so searches by similar names may miss these "
                   "members until they are brought up to date: 'tavi members' does so, as all that opens the club.\n";
  }
  if (missing.rows.empty()) return;
  context.out
      << "Handicaps pass over rows that lack a number, and fail at an unreadable one; complete or delete them with "
         "'tavi sql':\n";
  for (const std::string& row : missing.rows) context.out << "  " << Printable(row) << '\n';
  if (missing.more > 0) context.out << "  (" << missing.more << " more)\n";
}

void WriteJson(const Context& context, const std::string& file, const access::CheckResult& result,
               const NameKeyCount& keys, const MissingNumbers& missing) {
  const Json document = {{"file", file},
                         {"sound", result.findings.empty()},
                         {"pages", result.pages},
                         {"tables", result.tables},
                         {"rows", result.rows},
                         {"indexes", result.indexes},
                         {"findings", JsonOf(result.findings)},
                         {"remarks", JsonOf(result.remarks)},
                         {"more", result.isCutShort},
                         {"advice", Advice(result)},
                         {"staleNameKeys", keys.stale},
                         {"rowsWithoutNumbers", missing.rows},
                         {"moreRowsWithoutNumbers", missing.more}};
  context.out << PrintableJson(document.Indented()) << '\n';
}

void WriteText(const Context& context, const std::string& file, const access::CheckResult& result,
               const NameKeyCount& keys, const MissingNumbers& missing) {
  const std::string name = Printable(file);
  for (const access::CheckFinding& finding : result.findings) context.out << Printable(finding.text) << '\n';
  for (const access::CheckFinding& remark : result.remarks)
    context.out << "Remark, harmless: " << Printable(remark.text) << '\n';
  if (result.findings.empty()) {
    context.out << name << ": sound (" << result.pages << " pages, " << result.tables << " tables, " << result.rows
                << " rows, " << result.indexes << " indexes)\n";
    WriteRemarks(context, keys, missing);
    return;
  }
  // The number last: a person sees the end of a long list.
  context.out << name << ": damaged (" << (result.isCutShort ? "more than " : "") << result.findings.size()
              << (result.findings.size() == 1 ? " finding" : " findings") << ")\n"
              << Advice(result) << '\n';
}

}  // namespace

int Check(const Context& context, const CheckRequest& request) {
  // Without a file the one that --db names, be it a club's or not.
  const std::string file = NativePath(request.file.empty() ? context.AccessFile() : request.file);
  std::unique_ptr<access::Database> database;
  access::CheckResult result;
  try {
    // Both in one: what keeps a file from being opened, and what ends the walk through it, are no findings.
    database = OpenToRead(context, file);
    result = RunCheck(context, *database, request.strict);
  } catch (const Error& problem) {
    context.error << "tavi: " << PrintableLines(problem.Description()) << '\n';
    return kCannotBeOpened;
  }
  const NameKeyCount keys = CountKeys(context, *database, result);
  const MissingNumbers missing = FindMissing(*database, result);
  if (context.format == OutputFormat::JsonText) {
    WriteJson(context, file, result, keys, missing);
  } else {
    WriteText(context, file, result, keys, missing);
  }
  return result.findings.empty() ? kSound : kDamaged;
}

}  // namespace tavi::host
