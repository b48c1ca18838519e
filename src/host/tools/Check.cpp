#include "host/tools/Check.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>

#include "access/catalog/Check.h"
#include "host/text/ProgressBar.h"
#include "host/tools/OpenFile.h"
#include "platform/values/Error.h"
#include "util/NativePath.h"

namespace tavi::host {
namespace {

/// Smaller files are done before a bar could be read.
constexpr std::size_t kPagesWorthABar = 2000;

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

access::CheckResult RunCheck(const Context& context, access::Database& database, bool strict) {
  std::optional<ProgressBar> bar;
  const auto progress = [&](std::size_t done, std::size_t total, const std::string& table) {
    if (total < kPagesWorthABar) return;
    if (!bar) bar.emplace(context.error, context.showProgress, total);
    bar->Show(done, "pages, table " + table);
  };
  return access::CheckFile(database, strict ? access::CheckKind::Strict : access::CheckKind::Ordinary, progress);
}

/// What the owner of the file can do.
std::string Advice(const access::CheckResult& result) {
  if (result.findings.empty()) return "";
  const bool rowsAreWhole = std::ranges::all_of(result.findings, [](const access::CheckFinding& finding) {
    return finding.part == access::CheckPart::Index || finding.part == access::CheckPart::Counter;
  });
  if (rowsAreWhole)
    return "The rows are whole; only indexes or counters are wrong. Keep a copy of the file and run 'tavi compact' on "
           "it, "
           "which makes them anew.";
  return "Do not go on writing into the file. Keep a copy of it as it is and restore it from a backup; what is newer "
         "than the backup can be read from the copy with 'tavi sql' or 'tavi dump' where it is not damaged.";
}

void WriteJson(const Context& context, const std::string& file, const access::CheckResult& result) {
  nlohmann::ordered_json findings = nlohmann::ordered_json::array();
  for (const access::CheckFinding& finding : result.findings)
    findings.push_back({{"part", NameOf(finding.part)}, {"table", finding.table}, {"text", finding.text}});
  const nlohmann::ordered_json document = {{"file", file},
                                           {"sound", result.findings.empty()},
                                           {"pages", result.pages},
                                           {"tables", result.tables},
                                           {"rows", result.rows},
                                           {"indexes", result.indexes},
                                           {"findings", findings},
                                           {"more", result.isCutShort},
                                           {"advice", Advice(result)}};
  context.out << document.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
}

void WriteText(const Context& context, const std::string& file, const access::CheckResult& result) {
  const std::string name = Printable(file);
  for (const access::CheckFinding& finding : result.findings) context.out << Printable(finding.text) << '\n';
  if (result.findings.empty()) {
    context.out << name << ": sound (" << result.pages << " pages, " << result.tables << " tables, " << result.rows
                << " rows, " << result.indexes << " indexes)\n";
    return;
  }
  context.out << name << ": damaged (" << (result.isCutShort ? "more than " : "") << result.findings.size()
              << (result.findings.size() == 1 ? " finding" : " findings") << ")\n"
              << Advice(result) << '\n';
}

}  // namespace

int Check(const Context& context, const CheckRequest& request) {
  const std::string file = NativePath(request.file.empty() ? context.AccessFile() : request.file);
  std::unique_ptr<access::Database> database;
  try {
    database = OpenToRead(context, file);
  } catch (const Error& problem) {
    context.error << "tavi: " << PrintableLines(problem.Description()) << '\n';
    return kCannotBeOpened;
  }
  const access::CheckResult result = RunCheck(context, *database, request.strict);
  if (context.format == OutputFormat::Json) {
    WriteJson(context, file, result);
  } else {
    WriteText(context, file, result);
  }
  return result.findings.empty() ? kSound : kDamaged;
}

}  // namespace tavi::host
