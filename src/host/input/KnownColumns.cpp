#include "host/input/KnownColumns.h"

#include <algorithm>
#include <map>

#include "host/text/NearestName.h"
#include "platform/values/Text.h"

namespace tavi::host {
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

}  // namespace tavi::host
