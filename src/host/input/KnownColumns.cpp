#include "host/input/KnownColumns.h"

#include <algorithm>

#include "host/text/NearestName.h"
#include "platform/values/Text.h"

namespace tavi::host {

std::vector<std::string> UnknownColumns(const CsvFile& file, const std::vector<std::string>& known, bool passOver) {
  std::vector<std::string> unknown;
  std::string reason;
  for (const std::string& name : file.ColumnNames()) {
    if (std::ranges::count(known, LowerCase(name)) > 0) continue;
    unknown.push_back(name);
    const std::string nearest = NearestName(name, known);
    reason += (reason.empty() ? "" : "; ") + std::string("the column \"") + name + "\" is not known" +
              (nearest.empty() ? "" : ", did you mean " + nearest + "?");
  }
  if (unknown.empty() || passOver) return unknown;
  std::string all;
  for (const std::string& name : known) all += (all.empty() ? "" : ", ") + name;
  file.RefuseHeader(reason + "; known are " + all + "; --ignore-unknown passes over all others");
}

}  // namespace tavi::host
